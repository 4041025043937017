#include "asientodatos.h"
#include "historialasiento.h"
#include "modeloasiento.h"

#include "currency/catalogomonedas.h"
#include "currency/mascara.h"
#include "store/valoressql.h"

#include <QJsonArray>
#include <QSet>
#include <QStringList>

#include <cmath>

namespace {

QVariant nulo(QMetaType::Type tipo)
{
    return QVariant(QMetaType(tipo));
}

QVariant sello(const QDateTime &momento)
{
    return Conexion::ValorFechaHora(momento);
}

// The stamp condition of a compare-and-set: the stamp that was read, or none when the row
// was stored without one. Stamps are compared as values: SQLite keeps them as text, and a
// stamp written without milliseconds ("…10:00:00") is the same instant as "…10:00:00.000".
QString condicionSello(Motor motor, const QDateTime &leido, QVariantList &valores)
{
    if (!leido.isValid())
        return QStringLiteral(" And AsiFechaModificado Is Null");
    valores << sello(leido);
    if (motor == Motor::SQLite)
        return QStringLiteral(" And strftime('%Y-%m-%d %H:%M:%f', AsiFechaModificado) = strftime('%Y-%m-%d %H:%M:%f', ?)");
    return QStringLiteral(" And AsiFechaModificado = ?");
}

} // namespace

Resultado<QString> TextoDeCuenta(Conexion &conexion, qint32 cuenta, bool mostrarCodigo)
{
    return Intentar([&] {
        auto rs = conexion.Abrir(QStringLiteral("Select CueCodigo, CueNombre From cceCuentas Where CueID = ?"), {cuenta});
        if (rs->Fin())
            return QString::number(cuenta);
        return TextoCuenta(rs->Texto(QStringLiteral("CueCodigo")).trimmed(), rs->Texto(QStringLiteral("CueNombre")).trimmed(), mostrarCodigo);
    });
}

bool SelloGuardado::Vigente(const QDateTime &leido) const
{
    return existe && estado != EstadoAsiento::kPapelera && sello == leido;
}

Resultado<QHash<qint32, SelloGuardado>> LeerSellos(Conexion &conexion, const QList<qint32> &ids)
{
    return Intentar([&] {
        QHash<qint32, SelloGuardado> sellos;
        if (ids.isEmpty())
            return sellos;
        QStringList lista;
        for (qint32 id : ids)
            lista << QString::number(id);
        auto rs = conexion.Abrir(QStringLiteral("Select AsiID, AsiEstado, AsiFechaModificado From cceAsientos Where AsiID In (%1)")
                                     .arg(lista.join(QLatin1Char(','))));
        for (; !rs->Fin(); rs->MoverSiguiente())
            sellos.insert(qint32(rs->Entero(QStringLiteral("AsiID"))),
                          {true, qint16(rs->Entero(QStringLiteral("AsiEstado"))), FechaHoraDeValor(rs->Campo(QStringLiteral("AsiFechaModificado")))});
        rs->Cerrar();
        return sellos;
    });
}

Resultado<bool> AsientoVerificado(Conexion &conexion, qint32 asiID)
{
    return Intentar([&] {
        auto rs = conexion.Abrir(QStringLiteral("Select AsiVerificado from cceAsientos Where AsiID = ") + QString::number(asiID));
        const QVariant v = rs->Fin() ? QVariant() : rs->Campo(0);
        rs->Cerrar();
        if (v.isNull())
            return false;
        const int marca = v.toInt();
        return marca == 1 || marca == 2;
    });
}

AsientoDatos::AsientoDatos(Conexion &conexion, const LibrosSistema &libros)
    : m_conexion(&conexion)
    , m_libros(libros)
{
}

namespace {

// A refusal told by the catalogue text numero (0: by the command's own text), with its detail.
std::optional<Fallo> rechazo(int numero, const QString &detalle)
{
    return Fallo{numero, detalle, false};
}

std::optional<Fallo> deLaBase(const ErrorBaseDatos &e)
{
    return FalloDe(0, e);
}

} // namespace

QDateTime AsientoDatos::SelloNuevo(const Reloj &reloj, const QDateTime &anterior, Sello sello)
{
    const bool enteros = sello == Sello::SegundosEnteros;
    QDateTime t = reloj.Ahora();
    t.setTime(QTime(t.time().hour(), t.time().minute(), t.time().second(), enteros ? 0 : t.time().msec()));
    if (anterior.isValid() && t <= anterior) {
        if (!enteros)
            return anterior.addMSecs(1);
        t = anterior.addSecs(1);
        t.setTime(QTime(t.time().hour(), t.time().minute(), t.time().second()));
    }
    return t;
}

std::optional<Fallo> AsientoDatos::CargarAsiento(qint32 asiID)
{
    m_cabezal = CabezalDatos();
    m_lineas.clear();
    try {
        auto rs = m_conexion->Abrir(QStringLiteral("Select * From cceAsientos Where AsiID = ?"), {asiID});
        if (rs->Fin())
            return rechazo(0, texto(2138).arg(asiID));
        m_cabezal.AsiID = qint32(rs->Entero(QStringLiteral("AsiID")));
        m_cabezal.Empresa = qint32(rs->Entero(QStringLiteral("AsiEmpresa")));
        m_cabezal.Estado = qint16(rs->Entero(QStringLiteral("AsiEstado")));
        m_cabezal.Fecha = rs->Fecha(QStringLiteral("AsiFechaAsiento"));
        m_cabezal.Leyenda = rs->Campo(QStringLiteral("AsiLeyenda")).toString().trimmed();
        m_cabezal.Libro = rs->EsNulo(QStringLiteral("AsiTipo")) ? 0 : qint16(rs->Entero(QStringLiteral("AsiTipo")));
        m_cabezal.Autoriza = rs->EsNulo(QStringLiteral("AsiUsuarioVerificador"))
                                 ? 0 : qint16(rs->Entero(QStringLiteral("AsiUsuarioVerificador")));
        m_cabezal.FechaModificado = FechaHoraDeValor(rs->Campo(QStringLiteral("AsiFechaModificado")));
        m_cabezal.FechaCambioEstado = FechaHoraDeValor(rs->Campo(QStringLiteral("AsiFechaEstado")));
        m_cabezal.Usuario = rs->EsNulo(QStringLiteral("AsiUsuario")) ? 0 : qint16(rs->Entero(QStringLiteral("AsiUsuario")));
        rs->Cerrar();

        rs = m_conexion->Abrir(QStringLiteral("Select * From cceAsientoCuenta Where ACuIDAsiento = ? Order By ACuOrden, ACuID"),
                               {asiID});
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            LineaDatos l;
            l.Cuenta = qint32(rs->Entero(QStringLiteral("ACuCuenta")));
            l.Proyecto = qint16(rs->Entero(QStringLiteral("ACuProyecto")));
            l.Departamento = qint16(rs->Entero(QStringLiteral("ACuDepartamento")));
            l.AlDebe = rs->EsNulo(QStringLiteral("AcuHaber"));
            const QString propio = l.AlDebe ? QStringLiteral("ACuDebe") : QStringLiteral("AcuHaber");
            l.Importe = rs->EsNulo(propio) ? Importe() : Importe::DesdeDouble(rs->Numero(propio));
            l.ImporteMC = Importe::DesdeDouble(rs->Numero(QStringLiteral("ACuImporteMC")));
            l.Tasa = l.Importe.esCero() ? 0 : l.ImporteMC.aDouble() / l.Importe.aDouble();
            l.Orden = rs->EsNulo(QStringLiteral("ACuOrden")) ? 0 : qint16(rs->Entero(QStringLiteral("ACuOrden")));
            m_lineas.append(l);
        }
        rs->Cerrar();
    } catch (const ErrorBaseDatos &e) {
        return deLaBase(e);
    }
    return std::nullopt;
}

Resultado<bool> AsientoDatos::HayCuentasCerradas(const QDate &fecha)
{
    return Intentar([&] { return hayCuentasCerradas(fecha); });
}

bool AsientoDatos::hayCuentasCerradas(const QDate &fecha)
{
    QStringList ids;
    for (const LineaDatos &l : std::as_const(m_lineas))
        ids << QString::number(l.Cuenta);
    if (ids.isEmpty())
        return false;
    auto rs = m_conexion->Abrir(QStringLiteral("Select Count(*) From cceCuentas Where CueID IN (") + ids.join(QStringLiteral(", "))
                                    + QStringLiteral(") And CueFechaCerrada >= ?"),
                                {Conexion::ValorFecha(fecha)});
    const bool hay = !rs->Fin() && QVariant(rs->Campo(0)).toInt() > 0;
    rs->Cerrar();
    return hay;
}

// The header's compare-and-set: the row is updated only while it still carries the stamp
// that was read.
std::optional<Fallo> AsientoDatos::actualizarCabezal(qint32 asiID, const QDateTime &nuevo)
{
    QVariantList valores{m_cabezal.Estado, Conexion::ValorFecha(m_cabezal.Fecha), m_cabezal.Leyenda,
                         m_cabezal.Libro ? QVariant(m_cabezal.Libro) : nulo(QMetaType::Int), m_cabezal.Autoriza,
                         sello(m_cabezal.FechaCambioEstado), sello(nuevo), asiID};
    const QString condicion = condicionSello(m_conexion->motor(), m_cabezal.FechaModificado, valores);
    const int cambiadas = m_conexion->Ejecutar(
        QStringLiteral("Update cceAsientos Set AsiEstado = ?, AsiFechaAsiento = ?, AsiLeyenda = ?, AsiTipo = ?,"
                       " AsiUsuarioVerificador = ?, AsiFechaEstado = ?, AsiFechaModificado = ?"
                       " Where AsiID = ?") + condicion,
        valores);
    if (cambiadas == 1)
        return std::nullopt;
    return rechazo(kModificado, texto(kModificado));
}

// A legend longer than its column is refused whole on every engine: PostgreSQL would refuse
// it and SQLite would keep it, so the same entry would behave differently.
std::optional<Fallo> AsientoDatos::leyendaAdmitida() const
{
    if (m_cabezal.Leyenda.size() <= kLargoLeyenda)
        return std::nullopt;
    return rechazo(0, texto(2139).arg(m_cabezal.Leyenda.size()).arg(kLargoLeyenda));
}

// The company's opening-balance book: the one the caller gave, else the system parameter.
qint16 AsientoDatos::libroApertura()
{
    if (m_libros.primeraApertura != 0)
        return m_libros.primeraApertura;
    auto rs = m_conexion->Abrir(QStringLiteral("Select ParValor From genParametros Where ParNombre = 'sis_LibroAsientoPrimeraApertura'"));
    const qint16 libro = rs->Fin() || rs->EsNulo(QStringLiteral("ParValor")) ? 0 : qint16(rs->Entero(QStringLiteral("ParValor")));
    rs->Cerrar();
    m_libros.primeraApertura = libro;
    return libro;
}

// Writes into the opening-balance book are taken one company at a time. SQLite's write
// transaction already holds the whole file; on PostgreSQL a lock of the transaction, keyed
// by the company, makes a second session wait until the first one ends and then see its
// entry.
void AsientoDatos::bloquearEmpresa(qint32 empresa)
{
    if (m_conexion->motor() != Motor::PostgreSQL)
        return;
    constexpr int kClaveApertura = 4404;
    auto rs = m_conexion->Abrir(QStringLiteral("Select pg_advisory_xact_lock(%1, %2)").arg(kClaveApertura).arg(empresa));
    rs->Cerrar();
}

// The company's accounting currency, with the catalogue loaded for its masks.
qint16 AsientoDatos::cargarMonedas(qint32 empresa, CatalogoMonedas &monedas)
{
    qint16 monedaContabilidad = 0;
    auto rs = m_conexion->Abrir(QStringLiteral("Select EmpMonedaContabilidad From cceEmpresas Where EmpID = ?"), {empresa});
    if (!rs->Fin() && !rs->EsNulo(QStringLiteral("EmpMonedaContabilidad")))
        monedaContabilidad = qint16(rs->Entero(QStringLiteral("EmpMonedaContabilidad")));
    rs->Cerrar();
    if (const auto fallo = monedas.CargarMonedas(*m_conexion))
        throw ErrorBaseDatos(fallo->detalle);
    monedas.FijarMonedaContabilidad(monedaContabilidad);
    return monedaContabilidad;
}

ResultadoBalance AsientoDatos::balanceDe(const QVector<LineaBalance> &lineas, qint32 empresa)
{
    CatalogoMonedas monedas;
    const qint16 monedaContabilidad = cargarMonedas(empresa, monedas);
    return CalcularBalance(lineas, monedaContabilidad, monedas);
}

// The loaded lines as the balance test takes them, each with its account's currency.
QVector<LineaBalance> AsientoDatos::lineasConMoneda()
{
    QVector<LineaBalance> lineas;
    QHash<qint32, qint16> monedaDe;
    for (const LineaDatos &l : std::as_const(m_lineas)) {
        if (!monedaDe.contains(l.Cuenta)) {
            auto rs = m_conexion->Abrir(QStringLiteral("Select CueMoneda From cceCuentas Where CueID = ?"), {l.Cuenta});
            monedaDe.insert(l.Cuenta, rs->Fin() || rs->EsNulo(QStringLiteral("CueMoneda")) ? 0 : qint16(rs->Entero(QStringLiteral("CueMoneda"))));
            rs->Cerrar();
        }
        lineas.append({l.AlDebe, monedaDe.value(l.Cuenta), l.ImporteMC, l.Importe});
    }
    return lineas;
}

qint32 AsientoDatos::empresaDelAsiento()
{
    qint32 empresa = m_cabezal.Empresa;
    if (empresa == 0 && m_cabezal.AsiID > 0) {
        auto rs = m_conexion->Abrir(QStringLiteral("Select AsiEmpresa From cceAsientos Where AsiID = ?"), {m_cabezal.AsiID});
        empresa = rs->Fin() ? 0 : qint32(rs->Entero(QStringLiteral("AsiEmpresa")));
        rs->Cerrar();
    }
    return empresa;
}

Resultado<ResultadoBalance> AsientoDatos::Balance()
{
    return Intentar([&] { return balanceDe(lineasConMoneda(), empresaDelAsiento()); });
}

// Every amount is stored as its currency's mask shows it: what is stored, shown and balanced
// is one amount (25000.005 pesos under "#,##0.00" is 25000.01 everywhere).
void AsientoDatos::redondearLineas()
{
    if (m_lineas.isEmpty())
        return;
    const QVector<LineaBalance> lineas = lineasConMoneda();
    CatalogoMonedas monedas;
    cargarMonedas(empresaDelAsiento(), monedas);
    const Mascara mascaraMC(monedas.DatoMoneda(0, 4).toString());
    for (int i = 0; i < m_lineas.size(); ++i) {
        LineaDatos &l = m_lineas[i];
        l.ImporteMC = ImporteConMascara(l.ImporteMC, mascaraMC);
        l.Importe = ImporteConMascara(l.Importe, monedas.DatoMoneda(lineas[i].moneda, 4).toString());
    }
}

// The rules of the books over the entry as it now stands in this transaction. libroAnterior
// is the book it had before this write (-1 for a new entry).
std::optional<Fallo> AsientoDatos::reglasDelLibro(qint32 asiID, const QJsonObject &antes)
{
    auto rs = m_conexion->Abrir(QStringLiteral("Select AsiEmpresa, AsiEstado, AsiTipo From cceAsientos Where AsiID = ?"), {asiID});
    if (rs->Fin())
        return std::nullopt;
    const qint32 empresa = qint32(rs->Entero(QStringLiteral("AsiEmpresa")));
    const qint16 estado = qint16(rs->Entero(QStringLiteral("AsiEstado")));
    const qint16 libro = rs->EsNulo(QStringLiteral("AsiTipo")) ? 0 : qint16(rs->Entero(QStringLiteral("AsiTipo")));
    rs->Cerrar();

    if (estado == EstadoAsiento::kRegistrado) {
        QVector<LineaBalance> lineas;
        rs = m_conexion->Abrir(QStringLiteral("Select l.ACuDebe, l.AcuHaber, l.ACuImporteMC, c.CueMoneda From cceAsientoCuenta l"
                                              " Left Join cceCuentas c On c.CueID = l.ACuCuenta Where l.ACuIDAsiento = ?"),
                               {asiID});
        for (; !rs->Fin(); rs->MoverSiguiente()) {
            LineaBalance l;
            l.alDebe = rs->EsNulo(QStringLiteral("AcuHaber"));
            l.moneda = rs->EsNulo(QStringLiteral("CueMoneda")) ? 0 : qint16(rs->Entero(QStringLiteral("CueMoneda")));
            l.mc = Importe::DesdeDouble(rs->Numero(QStringLiteral("ACuImporteMC")));
            const QString propio = l.alDebe ? QStringLiteral("ACuDebe") : QStringLiteral("AcuHaber");
            l.me = rs->EsNulo(propio) ? Importe() : Importe::DesdeDouble(rs->Numero(propio));
            lineas.append(l);
        }
        rs->Cerrar();
        const ResultadoBalance b = balanceDe(lineas, empresa);
        if (!b.cierra)
            return rechazo(kDescuadrado, texto(2140).arg(b.debeMC.aTexto(), b.haberMC.aTexto()));
    }

    const qint16 apertura = libroApertura();
    if (apertura == 0 || libro != apertura || estado == EstadoAsiento::kPapelera)
        return std::nullopt;
    rs = m_conexion->Abrir(QStringLiteral("Select AsiEstado From cceAsientos Where AsiEmpresa = ? And AsiTipo = ? And AsiEstado <> 9"
                                          " And AsiID <> ?"),
                           {empresa, apertura, asiID});
    int otros = 0;
    int otrosRegistrados = 0;
    for (; !rs->Fin(); rs->MoverSiguiente()) {
        ++otros;
        otrosRegistrados += rs->Entero(QStringLiteral("AsiEstado")) == EstadoAsiento::kRegistrado ? 1 : 0;
    }
    rs->Cerrar();
    // It comes into the book when it is new, moved there, or back from the trash.
    const bool entra = antes.isEmpty() || antes.value(QStringLiteral("Libro")).toInt() != apertura
                    || antes.value(QStringLiteral("Estado")).toInt() == EstadoAsiento::kPapelera;
    if ((entra && otros > 0) || (estado == EstadoAsiento::kRegistrado && otrosRegistrados > 0))
        return rechazo(kAperturaDuplicada, texto(2141));
    return std::nullopt;
}

// Every amount is one the store keeps exactly: finite and within a line's range.
std::optional<Fallo> AsientoDatos::importesEnRango() const
{
    auto admitido = [](Importe v) { return v.abs() <= Importe::MaximoLinea(); };
    for (const LineaDatos &l : std::as_const(m_lineas)) {
        if (!admitido(l.Importe) || !admitido(l.ImporteMC))
            return rechazo(kFueraDeRango, texto(2142).arg(l.Cuenta));
    }
    return std::nullopt;
}

std::optional<Fallo> AsientoDatos::Grabar(Sello sello)
{
    if (auto fallo = leyendaAdmitida())
        return fallo;
    const QDateTime nuevo = SelloNuevo(m_conexion->reloj(), m_cabezal.FechaModificado, sello);
    try {
        Transaccion tx(*m_conexion);
        if (m_cabezal.Libro != 0 && m_cabezal.Libro == libroApertura())
            bloquearEmpresa(m_cabezal.Empresa);
        const QJsonObject antes = HistorialAsiento::LeerGuardado(*m_conexion, m_cabezal.AsiID);
        if (auto fallo = actualizarCabezal(m_cabezal.AsiID, nuevo))
            return fallo;
        if (auto fallo = reglasDelLibro(m_cabezal.AsiID, antes))
            return fallo;
        const QJsonObject despues = HistorialAsiento::LeerGuardado(*m_conexion, m_cabezal.AsiID);
        const bool cambiaEstado = antes.value(QStringLiteral("Estado")) != despues.value(QStringLiteral("Estado"));
        HistorialAsiento::Registrar(*m_conexion, m_cabezal.AsiID, autor(), nuevo,
                                    cambiaEstado ? HistorialAsiento::kEstado : HistorialAsiento::kCambio, antes, despues);
        tx.Confirmar();
    } catch (const ErrorBaseDatos &e) {
        return deLaBase(e);
    }
    m_cabezal.FechaModificado = nuevo;
    return std::nullopt;
}

void AsientoDatos::escribirLineas(qint32 asiID)
{
    m_conexion->Ejecutar(QStringLiteral("Delete From cceAsientoCuenta Where ACuIDAsiento = ?"), {asiID});
    // Lines keep their order of entry; new ones (and any repeated number) go after the last.
    int ultimo = 0;
    for (const LineaDatos &l : std::as_const(m_lineas))
        ultimo = std::max(ultimo, int(l.Orden));
    QSet<int> usados;
    for (const LineaDatos &l : std::as_const(m_lineas)) {
        int orden = l.Orden;
        if (orden <= 0 || usados.contains(orden))
            orden = ++ultimo;
        usados.insert(orden);
        const QVariant importe(l.Importe.aDouble());
        m_conexion->Ejecutar(QStringLiteral("Insert Into cceAsientoCuenta (ACuIDAsiento, ACuCuenta, ACuProyecto, ACuDepartamento,"
                                            " ACuDebe, AcuHaber, ACuImporteMC, ACuOrden) Values (?, ?, ?, ?, ?, ?, ?, ?)"),
                             {asiID, l.Cuenta, l.Proyecto, l.Departamento, l.AlDebe ? importe : nulo(QMetaType::Double),
                              l.AlDebe ? nulo(QMetaType::Double) : importe, l.ImporteMC.aDouble(), orden});
    }
}

std::optional<Fallo> AsientoDatos::GrabarTodo()
{
    if (auto fallo = leyendaAdmitida())
        return fallo;
    if (auto fallo = importesEnRango())
        return fallo;
    const QDateTime nuevo = SelloNuevo(m_conexion->reloj(), m_cabezal.FechaModificado);
    const QVariant libro = m_cabezal.Libro ? QVariant(m_cabezal.Libro) : nulo(QMetaType::Int);
    qint32 id = m_cabezal.AsiID;
    try {
        Transaccion tx(*m_conexion);
        redondearLineas();
        if (m_cabezal.Libro != 0 && m_cabezal.Libro == libroApertura())
            bloquearEmpresa(m_cabezal.Empresa);
        QJsonObject antes;
        if (id <= 0) {
            id = qint32(m_conexion->Insertar(
                QStringLiteral("Insert Into cceAsientos (AsiEmpresa, AsiEstado, AsiFechaAsiento, AsiFechaModificado, AsiFechaEstado,"
                               " AsiLeyenda, AsiTipo, AsiUsuarioVerificador, AsiUsuario) Values (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                {m_cabezal.Empresa, m_cabezal.Estado, Conexion::ValorFecha(m_cabezal.Fecha), sello(nuevo),
                 sello(m_cabezal.FechaCambioEstado.isValid() ? m_cabezal.FechaCambioEstado : nuevo), m_cabezal.Leyenda, libro,
                 m_cabezal.Autoriza, m_cabezal.Usuario},
                QStringLiteral("AsiID")));
            if (id <= 0)
                throw ErrorBaseDatos(QStringLiteral("el motor no dio el número del asiento nuevo"));
        } else {
            antes = HistorialAsiento::LeerGuardado(*m_conexion, id);
            if (auto fallo = actualizarCabezal(id, nuevo))
                return fallo;
        }
        escribirLineas(id);
        if (auto fallo = reglasDelLibro(id, antes))
            return fallo;
        const char *operacion = m_operacion ? m_operacion : antes.isEmpty() ? HistorialAsiento::kAlta : HistorialAsiento::kCambio;
        HistorialAsiento::Registrar(*m_conexion, id, autor(), nuevo, operacion, antes, HistorialAsiento::LeerGuardado(*m_conexion, id));
        tx.Confirmar();
    } catch (const ErrorBaseDatos &e) {
        return deLaBase(e);
    }
    m_cabezal.AsiID = id;
    m_cabezal.FechaModificado = nuevo;
    return std::nullopt;
}

std::optional<Fallo> AsientoDatos::EnviarPapelera(qint32 asiID, const QDateTime &selloLeido, QStringList *cambiados)
{
    QStringList ids{QString::number(asiID)};
    try {
        Transaccion tx(*m_conexion);
        const QDateTime nuevo = SelloNuevo(m_conexion->reloj(), selloLeido);
        auto rs = m_conexion->Abrir(QStringLiteral("Select AsiTipo, AsiFechaAsiento, AsiEmpresa From cceAsientos Where AsiID = ?"),
                                    {asiID});
        if (rs->Fin())
            return rechazo(0, texto(2138).arg(asiID));
        const qint16 libro = rs->EsNulo(QStringLiteral("AsiTipo")) ? 0 : qint16(rs->Entero(QStringLiteral("AsiTipo")));
        const QDate fecha = rs->Fecha(QStringLiteral("AsiFechaAsiento"));
        const qint32 empresa = qint32(rs->Entero(QStringLiteral("AsiEmpresa")));
        rs->Cerrar();

        // The audit rows of the entries sent to the trash, written once all of them are.
        QList<std::pair<qint32, QJsonObject>> antes{{asiID, HistorialAsiento::LeerGuardado(*m_conexion, asiID)}};
        QVariantList valores{sello(nuevo), sello(nuevo), asiID};
        const QString condicion = condicionSello(m_conexion->motor(), selloLeido, valores);
        const int cambiadas = m_conexion->Ejecutar(
            QStringLiteral("Update cceAsientos Set AsiEstado = 9, AsiFechaEstado = ?, AsiFechaModificado = ?"
                           " Where AsiID = ? And AsiEstado <> 9") + condicion,
            valores);
        if (cambiadas != 1)
            return rechazo(kModificado, texto(kModificado));

        if (m_libros.apertura != 0 && libro == m_libros.apertura && m_libros.cierre != 0) {
            auto cierres = m_conexion->Abrir(QStringLiteral("Select AsiID From cceAsientos Where AsiEmpresa = ? And AsiTipo = ?"
                                                            " And AsiFechaAsiento = ? And AsiEstado <> 9"),
                                             {empresa, m_libros.cierre, Conexion::ValorFecha(fecha.addDays(-1))});
            QStringList cierresIds;
            for (; !cierres->Fin(); cierres->MoverSiguiente())
                cierresIds << cierres->Texto(QStringLiteral("AsiID"));
            cierres->Cerrar();
            for (const QString &id : cierresIds) {
                antes.append({id.toInt(), HistorialAsiento::LeerGuardado(*m_conexion, id.toInt())});
                m_conexion->Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9, AsiFechaEstado = ?, AsiFechaModificado = ?"
                                                    " Where AsiID = ?"),
                                     {sello(nuevo), sello(nuevo), id.toInt()});
            }
            ids << cierresIds;
        }
        for (const auto &[id, previo] : std::as_const(antes))
            HistorialAsiento::Registrar(*m_conexion, id, autor(), nuevo, HistorialAsiento::kPapelera, previo,
                                        HistorialAsiento::LeerGuardado(*m_conexion, id));
        tx.Confirmar();
        if (m_cabezal.AsiID == asiID) {
            m_cabezal.Estado = EstadoAsiento::kPapelera;
            m_cabezal.FechaModificado = nuevo;
        }
    } catch (const ErrorBaseDatos &e) {
        return deLaBase(e);
    }
    if (cambiados)
        *cambiados = ids;
    return std::nullopt;
}

std::optional<Fallo> AsientoDatos::RestaurarVersion(qint32 asiID, const QJsonObject &version, const QDateTime &selloLeido,
                                                   bool deshacer)
{
    if (auto fallo = CargarAsiento(asiID))
        return fallo;
    CabezalDatos &c = m_cabezal;
    c.FechaModificado = selloLeido; // the write compares the stamp the caller read
    const qint16 estado = qint16(version.value(QStringLiteral("Estado")).toInt());
    if (estado != c.Estado)
        c.FechaCambioEstado = SelloNuevo(m_conexion->reloj(), QDateTime());
    c.Estado = estado;
    c.Fecha = QDate::fromString(version.value(QStringLiteral("Fecha")).toString(), Qt::ISODate);
    c.Leyenda = version.value(QStringLiteral("Leyenda")).toString();
    c.Libro = qint16(version.value(QStringLiteral("Libro")).toInt());
    c.Autoriza = qint16(version.value(QStringLiteral("Autoriza")).toInt());
    m_lineas.clear();
    for (const QJsonValue &v : version.value(QStringLiteral("Lineas")).toArray()) {
        const QJsonObject o = v.toObject();
        LineaDatos l;
        l.Cuenta = qint32(o.value(QStringLiteral("Cuenta")).toInteger());
        l.Proyecto = qint16(o.value(QStringLiteral("Proyecto")).toInt());
        l.Departamento = qint16(o.value(QStringLiteral("Departamento")).toInt());
        l.AlDebe = o.value(QStringLiteral("Haber")).isNull();
        l.Importe = Importe::DesdeDouble(o.value(l.AlDebe ? QStringLiteral("Debe") : QStringLiteral("Haber")).toDouble());
        l.ImporteMC = Importe::DesdeDouble(o.value(QStringLiteral("ImporteMC")).toDouble());
        l.Tasa = l.Importe.esCero() ? 0 : l.ImporteMC.aDouble() / l.Importe.aDouble();
        l.Orden = qint16(o.value(QStringLiteral("Orden")).toInt());
        m_lineas.append(l);
    }
    try {
        // An entry that comes back among the live ones obeys the closed accounts as any write
        // at its date does; one that goes to the trash does not need to.
        if (c.Estado != EstadoAsiento::kPapelera && hayCuentasCerradas(c.Fecha))
            return rechazo(kCuentaCerrada, texto(2143).arg(c.Fecha.toString(Qt::ISODate)));
    } catch (const ErrorBaseDatos &e) {
        return deLaBase(e);
    }
    m_operacion = deshacer ? HistorialAsiento::kDeshacer : HistorialAsiento::kRestauracion;
    auto fallo = GrabarTodo();
    m_operacion = nullptr;
    return fallo;
}

std::optional<Fallo> AsientoDatos::EliminarDefinitivo(qint32 asiID, const QDateTime &selloLeido)
{
    try {
        Transaccion tx(*m_conexion);
        // The stamp is compared by an update that changes nothing: it also holds the row
        // until the deletion is committed.
        QVariantList valores{asiID};
        const QString condicion = condicionSello(m_conexion->motor(), selloLeido, valores);
        if (m_conexion->Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = AsiEstado Where AsiID = ?") + condicion, valores) != 1)
            return rechazo(kModificado, texto(kModificado));
        const QJsonObject antes = HistorialAsiento::LeerGuardado(*m_conexion, asiID);
        m_conexion->Ejecutar(QStringLiteral("Delete From cceAsientoCuenta Where ACuIDAsiento = ?"), {asiID});
        m_conexion->Ejecutar(QStringLiteral("Delete From cceAsientos Where AsiID = ?"), {asiID});
        if (!antes.isEmpty())
            HistorialAsiento::Registrar(*m_conexion, asiID, autor(), SelloNuevo(m_conexion->reloj(), QDateTime()), HistorialAsiento::kEliminacion,
                                        antes, {});
        tx.Confirmar();
    } catch (const ErrorBaseDatos &e) {
        return deLaBase(e);
    }
    return std::nullopt;
}

Resultado<int> AsientoDatos::EstadoApertura(const QDate &fecha, qint32 empresa)
{
    return Intentar([&] {
        auto posteriores = [&](qint16 libro) {
            if (libro == 0)
                return false;
            auto rs = m_conexion->Abrir(QStringLiteral("Select Count(*) From cceAsientos Where AsiEmpresa = ? And AsiTipo = ?"
                                                       " And AsiFechaAsiento > ? And AsiEstado <> 9"),
                                        {empresa, libro, Conexion::ValorFecha(fecha)});
            const bool hay = !rs->Fin() && QVariant(rs->Campo(0)).toInt() > 0;
            rs->Cerrar();
            return hay;
        };
        if (posteriores(m_libros.adc))
            return 1;
        if (posteriores(m_libros.cierre))
            return 2;
        return 0;
    });
}
