#include "asientoapertura.h"

#include "currency/catalogomonedas.h"
#include "currency/mascara.h"
#include "currency/tipocambio.h"
#include "services/ocupado.h"
#include "services/serviciomensajes.h"
#include "store/valoressql.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

AsientoApertura::AsientoApertura(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos,
                                 PantallaAsientos &pantalla)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_comandos(comandos)
    , m_pantalla(pantalla)
{
}

bool AsientoApertura::ActualizarExisteApertura(bool decirFallo)
{
    if (!m_datos.conexion())
        return m_existe;
    // Unknown: the banner stays as it is, and a command that needs to know stops on the
    // failure and says so; the start of the document says it at once.
    const auto existe = actualizar();
    if (!existe && decirFallo)
        m_datos.Error(1906, existe.fallo().detalle);
    return m_existe;
}

std::optional<bool> AsientoApertura::existeApertura(int textoFallo)
{
    const auto existe = actualizar();
    if (!existe) {
        m_datos.Error(textoFallo, existe.fallo().detalle);
        return std::nullopt;
    }
    return *existe;
}

Resultado<bool> AsientoApertura::actualizar()
{
    SaldosIniciales saldos = m_comandos.saldosIniciales();
    const auto existe = saldos.ExisteAsientoApertura();
    if (!existe)
        return existe.fallo();
    bool sinTerminar = false;
    if (!*existe) {
        const auto otro = saldos.OtroAsientoApertura();
        if (!otro)
            return otro.fallo();
        sinTerminar = *otro > 0;
    }
    if (*existe != m_existe || sinTerminar != m_sinTerminar || !m_dicho) {
        m_existe = *existe;
        m_sinTerminar = sinTerminar;
        m_dicho = true;
        if (alCambiar)
            alCambiar(m_existe);
    }
    return m_existe;
}

void AsientoApertura::MnuEdiAPA()
{
    if (!m_datos.conexion() || !m_datos.TienePermiso(u'A'))
        return;
    const auto existe = existeApertura(1930);
    if (!existe || *existe)
        return;
    // One made already and not finished (incomplete or a draft): it is shown to be
    // finished instead of making another.
    const auto pendiente = m_datos.Leido(m_comandos.saldosIniciales().OtroAsientoApertura(), 1930);
    if (!pendiente)
        return;
    if (*pendiente > 0) {
        MostrarAsiento(*pendiente);
        m_datos.Informar(1960);
        return;
    }
    if (m_datos.mensajes->Preguntar(m_datos.texto(1827), ServicioMensajes::Botones::SiNo, m_datos.texto(2134))
        != ServicioMensajes::Respuesta::Si)
        return;
    const qint32 id = HacerAsientoApertura();
    if (id > 0) {
        const int fila = m_asientos.grilla().Filas() - 1;
        m_comandos.CargarAsiento(id, fila);
        m_pantalla.SeleccionarFila(fila);
        ActualizarExisteApertura();
    }
}

void AsientoApertura::MostrarAsiento(qint32 asiID)
{
    if (const int r = m_asientos.FilaDeAsiento(asiID); r >= 0) {
        m_pantalla.SeleccionarFila(r);
        return;
    }
    const int fila = m_asientos.grilla().Filas() - 1;
    m_comandos.CargarAsiento(asiID, fila);
    m_pantalla.SeleccionarFila(fila);
}

// Values at the quotation of the opening-balance date the foreign balances stored without
// their value in the accounting currency. False, after naming the account, when a currency
// has no quotation for that date: a balance is never booked at a rate of 1 it does not have.
// False too, after telling it (1929), when the quotations cannot be read.
bool AsientoApertura::valorarSaldosExtranjeros(QVector<LineaDatos> &lineas, const QVector<qint16> &monedas)
{
    const qint16 mc = m_datos.empresa.monedaContabilidad;
    const ReglasCotizacion reglas = m_datos.reglasCotizacion();
    const QString mascaraMC = m_datos.monedas().DatoMoneda(0, 4).toString();
    for (int i = 0; i < lineas.size(); ++i) {
        LineaDatos &l = lineas[i];
        if (monedas.value(i) == 0 || !l.ImporteMC.esCero() || l.Importe.esCero())
            continue;
        bool hallada = false;
        QDate fecha;
        Importe cotizacion;
        if (const auto fallo = BuscarTipoCambio(*m_datos.conexion(), monedas.value(i), mc, m_datos.empresa.tipoTCComprobantes,
                                                m_datos.fechaAsientoApertura, fecha, reglas, cotizacion, &hallada)) {
            m_datos.MostrarFallo(*fallo);
            return false;
        }
        const double tasa = cotizacion.aDouble();
        if (!hallada || !(tasa > 0)) {
            const auto cuenta = m_datos.Leido(TextoDeCuenta(*m_datos.conexion(), l.Cuenta, true), 1930);
            if (!cuenta)
                return false;
            QString texto = m_datos.texto(1959);
            texto.replace(QLatin1String("[p]"), *cuenta);
            texto.replace(QLatin1String("[p1]"), FormatoFechaSuite(m_datos.fechaAsientoApertura, QTime(0, 0), m_datos.formatoFecha));
            m_datos.mensajes->MostrarError(texto, m_datos.texto(1000), QString());
            return false;
        }
        l.Tasa = tasa;
        l.ImporteMC = ImporteConMascara(l.Importe.aDouble() * tasa, mascaraMC);
    }
    return true;
}

bool AsientoApertura::PreguntarAbrirCuentas(const QString &lista)
{
    if (lista.isEmpty())
        return true;
    return m_datos.mensajes->Preguntar(m_datos.texto(2137), ServicioMensajes::Botones::AceptarCancelar, m_datos.texto(2135))
        == ServicioMensajes::Respuesta::Si;
}

qint32 AsientoApertura::HacerAsientoApertura()
{
    SaldosIniciales saldos = m_comandos.saldosIniciales();
    // One is enough: also a draft or an incomplete one of that book is to be finished, not
    // made again. A read that fails is told (1930) and nothing is made.
    const auto existe = existeApertura(1930);
    if (!existe)
        return 0;
    std::optional<qint32> otro = 0;
    if (!*existe && !(otro = m_datos.Leido(saldos.OtroAsientoApertura(), 1930)))
        return 0;
    if (*existe || *otro > 0) {
        m_datos.Advertir(1835);
        return 0;
    }
    const auto cerradas = m_datos.Leido(saldos.CuentasCerradasApertura(m_datos.fechaAsientoApertura, m_datos.empresa.clase), 1930);
    if (!cerradas)
        return 0;
    // Opening an account clears its balance: the accounts to be opened book nothing, and
    // when only they have a balance there is nothing to book and nothing is opened for it.
    const QStringList abiertas = cerradas->split(QLatin1Char(','), Qt::SkipEmptyParts);
    QVector<qint16> monedasLeidas;
    const auto leidas = m_datos.Leido(saldos.LineasDeSaldos(m_datos.empresa.clase, m_datos.empresa.monedaContabilidad, &monedasLeidas), 1930);
    if (!leidas)
        return 0;
    QVector<LineaDatos> lineas;
    QVector<qint16> monedas;
    for (int i = 0; i < leidas->size(); ++i) {
        if (abiertas.contains(QString::number((*leidas)[i].Cuenta)))
            continue;
        lineas.append((*leidas)[i]);
        monedas.append(monedasLeidas.value(i));
    }
    if (lineas.isEmpty()) {
        if (m_datos.Preguntar(1855) && ayuda)
            ayuda();
        return 0;
    }
    // Everything is checked and asked before anything changes.
    if (!valorarSaldosExtranjeros(lineas, monedas) || !PreguntarAbrirCuentas(*cerradas))
        return 0;
    const Ocupado ocupado;

    AsientoDatos datos = m_comandos.NuevoAsientoDatos();
    CabezalDatos &d = datos.Cabezal();
    d.Empresa = m_datos.idEmpresa();
    datos.Lineas() = lineas;
    // Registered when the balances balance; otherwise incomplete, so that it is finished by
    // hand and only then counts as the opening-balance entry.
    const auto balance = m_datos.Leido(datos.Balance(), 1930);
    if (!balance)
        return 0;
    const bool cierra = balance->cierra;
    d.Usuario = m_datos.usuario;
    d.Estado = cierra ? EstadoAsiento::kRegistrado : EstadoAsiento::kInconcluso;
    d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
    d.Fecha = m_datos.fechaAsientoApertura;
    d.Leyenda = m_datos.texto(1095);
    d.Libro = m_datos.librosSistema().primeraApertura;
    // The accounts are opened with the entry or not at all.
    const auto hecho = EnTransaccion(*m_datos.conexion(), [&] {
        std::optional<Fallo> fallo = saldos.AbrirCuentas(*cerradas);
        if (!fallo)
            fallo = cierra ? datos.GrabarApertura() : datos.GrabarTodo();
        if (!fallo)
            return true;
        // Another session made it meanwhile, or the store refused it: nothing was written.
        if (fallo->numeroTexto == AsientoDatos::kAperturaDuplicada) {
            m_datos.Advertir(1835);
            ActualizarExisteApertura();
        } else {
            m_comandos.DecirRechazo(*fallo, 1930);
        }
        return false;
    });
    if (!hecho) {
        m_datos.Error(1930, hecho.fallo().detalle);
        return 0;
    }
    return *hecho ? d.AsiID : 0;
}

void AsientoApertura::ConvertirApertura()
{
    if (!m_datos.conexion() || !m_datos.TienePermiso(u'M'))
        return;
    const int cabezal = m_asientos.FilaCabezalDe(m_pantalla.FilaActual());
    if (cabezal < 0 || m_asientos.IdDeFila(cabezal) <= 0)
        return;
    m_asientos.TomarAsientoDeFila(cabezal);
    const CabezalAsiento c = m_asientos.Cabezal;
    m_asientos.ResetCabezal();
    const qint16 libroApertura = m_datos.librosSistema().primeraApertura;
    const bool esApertura = c.AsiTipo != 0 && c.AsiTipo == libroApertura;
    if (!esApertura) {
        const auto existe = existeApertura(1933);
        if (!existe)
            return;
        std::optional<qint32> otro = 0;
        if (!*existe && !(otro = m_datos.Leido(m_comandos.saldosIniciales().OtroAsientoApertura(c.AsiID), 1933)))
            return;
        if (*existe || *otro > 0) {
            m_datos.Advertir(1835);
            return;
        }
        if (!m_datos.Preguntar(1856))
            return;
    } else {
        if (!m_datos.Preguntar(1857))
            return;
        m_asientos.TomarAsientoDeFila(cabezal);
        const bool puede = m_comandos.PuedeModificarApertura(1933);
        m_asientos.ResetCabezal();
        if (!puede)
            return;
    }
    AsientoDatos datos = m_comandos.NuevoAsientoDatos();
    if (const auto fallo = datos.CargarAsiento(c.AsiID)) {
        m_comandos.DecirRechazo(*fallo, 1933);
        return;
    }
    CabezalDatos &d = datos.Cabezal();
    if (d.FechaModificado != c.AsiFechaModificado) {
        m_datos.Error(1820);
        return;
    }
    const auto cerradas = m_datos.Leido(datos.HayCuentasCerradas(d.Fecha), 1933);
    if (!cerradas)
        return;
    if (*cerradas) {
        m_datos.Error(1812);
        return;
    }
    if (!esApertura) {
        // Only a balanced entry can become it: it is registered as it becomes it.
        const auto balance = m_datos.Leido(datos.Balance(), 1933);
        if (!balance)
            return;
        if (!balance->cierra) {
            m_datos.Informar(1952);
            return;
        }
        // The opening-balance entry may not use an account closed on or after its date.
        QStringList cuentas;
        for (const LineaDatos &l : std::as_const(datos.Lineas()))
            cuentas << QString::number(l.Cuenta);
        if (!cuentas.isEmpty()) {
            const auto cerradasApertura = m_datos.Leido(m_comandos.saldosIniciales().CuentasCerradasApertura(
                                                            m_datos.fechaAsientoApertura, m_datos.empresa.clase, cuentas.join(QLatin1Char(','))),
                                                        1933);
            if (!cerradasApertura)
                return;
            if (!cerradasApertura->isEmpty()) {
                m_datos.Error(1811);
                return;
            }
        }
        // It becomes the opening-balance entry: its book, its date, registered.
        d.Libro = libroApertura;
        d.Fecha = m_datos.fechaAsientoApertura;
        if (d.Estado != EstadoAsiento::kRegistrado) {
            d.Estado = EstadoAsiento::kRegistrado;
            d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
        }
    } else {
        // Back to an ordinary entry of the default book (the first by name without one),
        // on the same date and in the same state.
        const auto libro = m_datos.Leido(m_comandos.LibroComun(), 1933);
        if (!libro)
            return;
        if (!*libro) {
            m_datos.Error(1837);
            return;
        }
        d.Libro = (*libro)->second;
    }
    if (const auto fallo = datos.Grabar(AsientoDatos::Sello::SegundosEnteros)) {
        m_comandos.DecirRechazo(*fallo, 1933);
        ActualizarExisteApertura();
        return;
    }
    m_asientos.grilla().FijarRedibujar(false);
    m_comandos.RecargarAsiento(c.AsiID, cabezal);
    m_asientos.grilla().FijarRedibujar(true);
    m_pantalla.SeleccionarFila(cabezal);
    ActualizarExisteApertura();
}
