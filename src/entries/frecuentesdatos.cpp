#include "frecuentesdatos.h"

#include "modeloasiento.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

const QString kColumnas = QStringLiteral("MFrID, MFrEmpresa, MFrNombre, MFrRecurrencia, MFrFechaProxima, MFrFecha, MFrLeyenda,"
                                         " MFrLibro, MFrUsuarioVerificador, MFrUsuario");

QVariant textoONulo(const QString &texto)
{
    return texto.isEmpty() ? QVariant(QMetaType(QMetaType::QString)) : QVariant(texto);
}

} // namespace

QDate FrecuentesDatos::SiguienteFecha(const MovimientoFrecuente &m)
{
    QDate siguiente = m.FechaProxima.addMonths(1);
    // The day the schedule began on comes back when the month has it: the 31st goes to the
    // 28th of February and back to the 31st in March.
    if (m.Fecha.isValid() && m.Fecha.day() > siguiente.day())
        siguiente = QDate(siguiente.year(), siguiente.month(), std::min(m.Fecha.day(), siguiente.daysInMonth()));
    return siguiente;
}

ResultadoBalance MovimientoFrecuente::Balance(qint16 monedaContabilidad, CatalogoMonedas &monedas) const
{
    QVector<LineaBalance> lineas;
    for (int i = 0; i < Lineas.size(); ++i)
        lineas.append({Lineas[i].AlDebe, Monedas.value(i), Lineas[i].ImporteMC, Lineas[i].Importe});
    return CalcularBalance(lineas, monedaContabilidad, monedas);
}

FrecuentesDatos::FrecuentesDatos(Conexion &conexion, std::function<QString(int)> texto)
    : m_conexion(conexion)
    , m_texto(std::move(texto))
{
}

std::optional<Fallo> FrecuentesDatos::Crear(const CabezalDatos &cabezal, const QVector<LineaDatos> &lineas,
                                            const QVector<qint16> &monedas, bool agendar, const QString &nombre,
                                            bool desdeElMesSiguiente, qint32 &mfrID)
{
    MovimientoFrecuente m;
    m.Empresa = cabezal.Empresa;
    m.Nombre = nombre;
    m.Recurrencia = agendar ? QString::fromLatin1(kRecurrenciaAgendado) : QString();
    m.FechaProxima = agendar ? cabezal.Fecha : QDate();
    m.Fecha = cabezal.Fecha;
    m.Leyenda = cabezal.Leyenda;
    m.Libro = cabezal.Libro;
    m.Autoriza = cabezal.Autoriza;
    m.Usuario = cabezal.Usuario;
    m.Lineas = lineas;
    m.Monedas = monedas;
    if (agendar && desdeElMesSiguiente)
        m.FechaProxima = SiguienteFecha(m);
    auto fallo = Guardar(m);
    mfrID = fallo ? 0 : m.MFrID;
    return fallo;
}

void FrecuentesDatos::escribirLineas(const MovimientoFrecuente &m)
{
    m_conexion.Ejecutar(QStringLiteral("Delete From genMovimientosFrecuentesLineas Where MFLIDMovimiento = ?"), {m.MFrID});
    for (int i = 0; i < m.Lineas.size(); ++i) {
        const LineaDatos &l = m.Lineas[i];
        m_conexion.Ejecutar(QStringLiteral("Insert Into genMovimientosFrecuentesLineas (MFLIDMovimiento, MFLOrden, MFLCuenta,"
                                           " MFLProyecto, MFLDepartamento, MFLMoneda, MFLEsDebe, MFLImporte, MFLTasa, MFLImporteMC)"
                                           " Values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                            {m.MFrID, i + 1, l.Cuenta, l.Proyecto, l.Departamento, m.Monedas.value(i), l.AlDebe ? 1 : 0,
                             l.Importe.aDouble(), l.Tasa, l.ImporteMC.aDouble()});
    }
}

std::optional<Fallo> FrecuentesDatos::Guardar(MovimientoFrecuente &m)
{
    for (const LineaDatos &l : std::as_const(m.Lineas)) {
        if (!std::isfinite(l.Tasa) || l.Importe.abs() > Importe::MaximoLinea() || l.ImporteMC.abs() > Importe::MaximoLinea())
            return Fallo{0, texto(2142).arg(l.Cuenta)};
    }
    // A failed write leaves the template as it was: a new one keeps no id of a row rolled back.
    const qint32 idAntes = m.MFrID;
    try {
        Transaccion tx(m_conexion);
        const QVariantList cabezal{m.Empresa, m.Nombre, textoONulo(m.Recurrencia), Conexion::ValorFecha(m.FechaProxima),
                                   Conexion::ValorFecha(m.Fecha), m.Leyenda, m.Libro, m.Autoriza, m.Usuario};
        if (m.MFrID <= 0) {
            QVariantList valores = cabezal;
            valores << Conexion::ValorFechaHora(AsientoDatos::SelloNuevo(m_conexion.reloj(), QDateTime()));
            m.MFrID = qint32(m_conexion.Insertar(
                QStringLiteral("Insert Into genMovimientosFrecuentes (MFrEmpresa, MFrNombre, MFrRecurrencia, MFrFechaProxima, MFrFecha,"
                               " MFrLeyenda, MFrLibro, MFrUsuarioVerificador, MFrUsuario, MFrCreado) Values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                valores, QStringLiteral("MFrID")));
        } else {
            QVariantList valores = cabezal;
            valores << m.MFrID;
            if (m_conexion.Ejecutar(QStringLiteral("Update genMovimientosFrecuentes Set MFrEmpresa = ?, MFrNombre = ?, MFrRecurrencia = ?,"
                                                   " MFrFechaProxima = ?, MFrFecha = ?, MFrLeyenda = ?, MFrLibro = ?,"
                                                   " MFrUsuarioVerificador = ?, MFrUsuario = ? Where MFrID = ?"),
                                    valores)
                != 1)
                return Fallo{0, texto(2144).arg(m.MFrID)};
        }
        escribirLineas(m);
        tx.Confirmar();
        return std::nullopt;
    } catch (const ErrorBaseDatos &e) {
        m.MFrID = idAntes;
        return FalloDe(0, e);
    }
}

std::optional<Fallo> FrecuentesDatos::Eliminar(qint32 mfrID)
{
    try {
        Transaccion tx(m_conexion);
        m_conexion.Ejecutar(QStringLiteral("Delete From genMovimientosFrecuentesLineas Where MFLIDMovimiento = ?"), {mfrID});
        m_conexion.Ejecutar(QStringLiteral("Delete From genMovimientosFrecuentes Where MFrID = ?"), {mfrID});
        tx.Confirmar();
        return std::nullopt;
    } catch (const ErrorBaseDatos &e) {
        return FalloDe(0, e);
    }
}

MovimientoFrecuente FrecuentesDatos::cabezalDe(Recordset &rs) const
{
    auto texto = [&rs](const char *c) { return rs.EsNulo(QString::fromLatin1(c)) ? QString() : rs.Texto(QString::fromLatin1(c)); };
    auto entero = [&rs](const char *c) { return rs.EsNulo(QString::fromLatin1(c)) ? 0 : rs.Entero(QString::fromLatin1(c)); };
    auto fecha = [&rs](const char *c) { return rs.EsNulo(QString::fromLatin1(c)) ? QDate() : rs.Fecha(QString::fromLatin1(c)); };
    MovimientoFrecuente m;
    m.MFrID = qint32(entero("MFrID"));
    m.Empresa = qint32(entero("MFrEmpresa"));
    m.Nombre = texto("MFrNombre").trimmed();
    m.Recurrencia = texto("MFrRecurrencia").trimmed();
    m.FechaProxima = fecha("MFrFechaProxima");
    m.Fecha = fecha("MFrFecha");
    m.Leyenda = texto("MFrLeyenda");
    m.Libro = qint16(entero("MFrLibro"));
    m.Autoriza = qint16(entero("MFrUsuarioVerificador"));
    m.Usuario = qint16(entero("MFrUsuario"));
    return m;
}

Resultado<std::optional<MovimientoFrecuente>> FrecuentesDatos::Leer(qint32 mfrID)
{
    return Intentar([&] { return leer(mfrID); });
}

Resultado<QVector<MovimientoFrecuente>> FrecuentesDatos::Buscar(qint32 empresa, const QString &texto)
{
    return Intentar([&] { return buscar(empresa, texto); });
}

Resultado<QVector<MovimientoFrecuente>> FrecuentesDatos::Vencidos(qint32 empresa, const QDate &hoy)
{
    return Intentar([&] { return vencidos(empresa, hoy); });
}

Resultado<QHash<qint32, QString>> FrecuentesDatos::NombresSinAgenda(const QList<qint32> &ids, qint32 empresa)
{
    QStringList lista;
    for (qint32 id : ids)
        lista << QString::number(id);
    return Intentar([&] {
        QHash<qint32, QString> nombres;
        auto rs = m_conexion.Abrir(QStringLiteral("Select MFrID, MFrNombre From genMovimientosFrecuentes ")
                                   + QStringLiteral("Where MFrID IN(") + lista.join(QLatin1Char(','))
                                   + QStringLiteral(") And MFrRecurrencia Is Null And MFrEmpresa = ")
                                   + QString::number(empresa));
        for (; !rs->Fin(); rs->MoverSiguiente())
            nombres.insert(qint32(rs->Entero(QStringLiteral("MFrID"))), rs->Texto(QStringLiteral("MFrNombre")).trimmed());
        return nombres;
    });
}

std::optional<MovimientoFrecuente> FrecuentesDatos::leer(qint32 mfrID)
{
    auto rs = m_conexion.Abrir(QStringLiteral("Select ") + kColumnas + QStringLiteral(" From genMovimientosFrecuentes Where MFrID = ?"),
                               {mfrID});
    if (rs->Fin())
        return std::nullopt;
    MovimientoFrecuente m = cabezalDe(*rs);
    rs->Cerrar();
    auto lineas = m_conexion.Abrir(QStringLiteral("Select MFLCuenta, MFLProyecto, MFLDepartamento, MFLMoneda, MFLEsDebe, MFLImporte,"
                                                  " MFLTasa, MFLImporteMC From genMovimientosFrecuentesLineas"
                                                  " Where MFLIDMovimiento = ? Order By MFLOrden"),
                                   {mfrID});
    auto numero = [&lineas](const char *c) {
        return lineas->EsNulo(QString::fromLatin1(c)) ? 0.0 : lineas->Numero(QString::fromLatin1(c));
    };
    for (; !lineas->Fin(); lineas->MoverSiguiente()) {
        LineaDatos l;
        l.Cuenta = qint32(numero("MFLCuenta"));
        l.Proyecto = qint16(numero("MFLProyecto"));
        l.Departamento = qint16(numero("MFLDepartamento"));
        l.AlDebe = numero("MFLEsDebe") != 0;
        l.Importe = Importe::DesdeDouble(numero("MFLImporte"));
        l.Tasa = numero("MFLTasa");
        l.ImporteMC = Importe::DesdeDouble(numero("MFLImporteMC"));
        l.Orden = qint16(m.Lineas.size() + 1);
        m.Lineas.append(l);
        m.Monedas.append(qint16(numero("MFLMoneda")));
    }
    return m;
}

QVector<MovimientoFrecuente> FrecuentesDatos::buscar(qint32 empresa, const QString &texto)
{
    // The name is compared here, not by the engine: "%" and "_" are plain characters of a
    // name, and case is ignored for every letter, accented ones too.
    const QString buscado = texto.trimmed();
    QVector<MovimientoFrecuente> r;
    for (auto rs = m_conexion.Abrir(QStringLiteral("Select ") + kColumnas
                                        + QStringLiteral(" From genMovimientosFrecuentes Where MFrEmpresa = ? Order By MFrNombre, MFrID"),
                                    {empresa});
         !rs->Fin(); rs->MoverSiguiente()) {
        MovimientoFrecuente m = cabezalDe(*rs);
        if (buscado.isEmpty() || m.Nombre.contains(buscado, Qt::CaseInsensitive))
            r.append(std::move(m));
    }
    // By name as a reader sorts them, whatever the engine's collation.
    std::stable_sort(r.begin(), r.end(), [](const MovimientoFrecuente &a, const MovimientoFrecuente &b) {
        return QString::localeAwareCompare(a.Nombre.toLower(), b.Nombre.toLower()) < 0;
    });
    return r;
}

QVector<MovimientoFrecuente> FrecuentesDatos::vencidos(qint32 empresa, const QDate &hoy)
{
    QVector<MovimientoFrecuente> r;
    for (auto rs = m_conexion.Abrir(QStringLiteral("Select ") + kColumnas
                                        + QStringLiteral(" From genMovimientosFrecuentes Where MFrEmpresa = ? And MFrRecurrencia Is Not Null"
                                                         " And MFrFechaProxima <= ? Order By MFrFechaProxima, MFrID"),
                                    {empresa, Conexion::ValorFecha(hoy)});
         !rs->Fin(); rs->MoverSiguiente())
        r.append(cabezalDe(*rs));
    return r;
}

std::optional<Fallo> FrecuentesDatos::Registrar(const MovimientoFrecuente &m, const QDate &fecha, qint16 usuario,
                                                const LibrosSistema &libros, bool borrador, qint32 &asiID)
{
    asiID = 0;
    if (m.Lineas.isEmpty())
        return Fallo{0, texto(2145)};
    try {
        Transaccion tx(m_conexion);
        if (m.Agendado()) {
            // The next date moves on only from the date read: a second registration of the
            // same due date finds it moved and writes nothing.
            if (m_conexion.Ejecutar(QStringLiteral("Update genMovimientosFrecuentes Set MFrFechaProxima = ?"
                                                   " Where MFrID = ? And MFrFechaProxima = ?"),
                                    {Conexion::ValorFecha(SiguienteFecha(m)), m.MFrID, Conexion::ValorFecha(m.FechaProxima)})
                != 1)
                return Fallo{0, texto(2146)};
        }
        AsientoDatos datos(m_conexion, libros);
        datos.FijarUsuario(usuario);
        datos.FijarTextos(m_texto);
        CabezalDatos &d = datos.Cabezal();
        d.Empresa = m.Empresa;
        d.Usuario = usuario;
        d.Fecha = fecha;
        d.Leyenda = m.Leyenda;
        d.Libro = m.Libro;
        d.Autoriza = m.Autoriza;
        // A future entry waits as a draft until its day, as every entry does.
        const bool borradorHastaSuDia = borrador || fecha > m_conexion.reloj().Hoy();
        datos.Lineas() = m.Lineas;
        const auto balance = datos.Balance();
        if (!balance)
            return balance.fallo();
        d.Estado = balance->cierra ? (borradorHastaSuDia ? EstadoAsiento::kBorrador : EstadoAsiento::kRegistrado)
                                   : EstadoAsiento::kInconcluso;
        d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_conexion.reloj(), QDateTime());
        const auto cerradas = datos.HayCuentasCerradas(fecha);
        if (!cerradas)
            return cerradas.fallo();
        if (*cerradas)
            return Fallo{0, texto(2147).arg(fecha.toString(QStringLiteral("dd/MM/yyyy")))};
        // The template's command tells any refusal with its own text and this detail.
        if (auto fallo = datos.GrabarTodo())
            return Fallo{0, fallo->detalle, fallo->deLaBase};
        tx.Confirmar();
        asiID = datos.Cabezal().AsiID;
        return std::nullopt;
    } catch (const ErrorBaseDatos &e) {
        return FalloDe(0, e);
    }
}
