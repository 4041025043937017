#include "unificaciontasa.h"

#include "comandosasiento.h"

#include "currency/catalogomonedas.h"
#include "currency/mascara.h"
#include "currency/tipocambio.h"
#include "services/serviciomensajes.h"

#include <QScopeGuard>

#include <optional>

UnificacionTasa::UnificacionTasa(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla,
                                 ComandosAsiento &comandos)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_grilla(asientos.grilla())
    , m_pantalla(pantalla)
    , m_comandos(comandos)
{
}

void UnificacionTasa::UnificarTC(bool bMonedaCuenta)
{
    const int fila = m_pantalla.FilaActual();
    const int cabezal = m_asientos.FilaCabezalDe(fila);
    if (cabezal < 0 || !m_datos.conexion() || !m_datos.TienePermiso(u'M'))
        return;
    const qint16 mc = m_datos.empresa.monedaContabilidad;
    qint16 moneda = m_asientos.LineaDeFila(fila).iMon;
    if (moneda == mc || moneda < 1) {
        // On the header row or a line in pesos: the entry's first foreign currency.
        for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal) && (moneda == mc || moneda < 1); ++r)
            moneda = m_asientos.LineaDeFila(r).iMon;
    }
    if (moneda == mc || moneda < 1)
        return;
    m_asientos.TomarAsientoDeFila(cabezal);
    // Every way out from here leaves the grid's current entry reset.
    const auto reset = qScopeGuard([this] { m_asientos.ResetCabezal(); });
    const ReglasCotizacion reglas = m_datos.reglasCotizacion();
    // The quotation of a pair on the entry's date; none after a failure to read it was told.
    auto cotizacion = [&](qint16 origen, qint16 destino) -> std::optional<double> {
        QDate fechaCotizacion;
        Importe tasa;
        if (const auto fallo = BuscarTipoCambio(*m_datos.conexion(), origen, destino, m_datos.empresa.tipoTCComprobantes,
                                                m_asientos.Cabezal.AsiFechaAsiento, fechaCotizacion, reglas, tasa)) {
            m_datos.MostrarFallo(*fallo);
            return std::nullopt;
        }
        return tasa.aDouble();
    };
    const std::optional<double> leida = bMonedaCuenta ? cotizacion(mc, moneda) : cotizacion(moneda, mc);
    if (!leida)
        return;
    double propuesta = *leida;
    if (propuesta > 0 && propuesta < 1)
        propuesta = 1 / propuesta;
    const QString mascara = m_datos.monedas().DatoMoneda(moneda, 5).toString();
    propuesta = RedondearConMascara(propuesta, mascara);
    // The rate is asked for as the line editor shows it, 1 or more; a currency worth less
    // than the accounting currency is applied with "/" (a yen at 0.25 is "/ 4"). The
    // entry's own rate tells which, or the quotation when the entry has none.
    double factor = m_asientos.BuscarTCMonedaCuenta(moneda);
    if (factor <= 0) {
        const std::optional<double> directa = bMonedaCuenta ? cotizacion(moneda, mc) : leida;
        if (!directa)
            return;
        factor = *directa;
    }
    const bool divide = factor > 0 && factor < 1;
    double tasa = propuesta;
    if (m_datos.mensajes->PedirNumero(m_datos.texto(1111), m_datos.texto(1112), tasa) && tasa > 0) {
        tasa = RedondearConMascara(tasa, mascara);
        if (tasa > 0) {
            AplicarTC(bMonedaCuenta, divide ? 1 / tasa : tasa, moneda);
            // The entry was read again in place: the row the user was on stays current.
            if (fila < m_grilla.Filas())
                m_pantalla.SeleccionarFila(fila);
        }
    }
}

bool UnificacionTasa::AplicarTC(bool bMonedaCuenta, double tasa, qint16 moneda)
{
    CabezalAsiento &c = m_asientos.Cabezal;
    const int cabezal = c.FilaCabezal;
    if (cabezal < 0)
        return false;
    AsientoDatos datos = m_comandos.NuevoAsientoDatos();
    if (c.AsiID > 0) {
        if (const auto fallo = datos.CargarAsiento(c.AsiID)) {
            m_comandos.DecirRechazo(*fallo, 1934);
            return false;
        }
        if (datos.Cabezal().FechaModificado != c.AsiFechaModificado) {
            m_datos.Error(1820);
            return false;
        }
        const auto cerradas = m_datos.Leido(datos.HayCuentasCerradas(datos.Cabezal().Fecha), 1934);
        if (!cerradas)
            return false;
        if (*cerradas) {
            m_datos.Advertir(1831);
            return false;
        }
    }
    m_grilla.FijarRedibujar(false);
    const int cambiadas = m_asientos.AplicarTasa(bMonedaCuenta, tasa, moneda);
    m_grilla.FijarRedibujar(true);
    if (cambiadas == 0 || c.AsiID <= 0)
        return cambiadas > 0;
    const qint32 id = c.AsiID;
    auto comoEstaba = [&] {
        m_grilla.FijarRedibujar(false);
        m_comandos.RecargarAsiento(id, cabezal);
        m_grilla.FijarRedibujar(true);
    };
    // Lines of other currencies (an exchange difference in pesos) keep their amounts, so the
    // new rate can leave the entry short on one side: it is then kept only as incomplete,
    // when the user agrees.
    const bool cierra = m_asientos.Cierra();
    CabezalDatos &d = datos.Cabezal();
    if (!cierra && d.Estado != EstadoAsiento::kInconcluso) {
        const QVector<LineaDatos> nuevas = m_asientos.LineasParaGrabar();
        Importe debe, haber;
        for (const LineaDatos &l : nuevas)
            (l.AlDebe ? debe : haber) += l.ImporteMC;
        const Mascara mascaraMC(m_datos.monedas().DatoMoneda(0, 4).toString());
        QString pregunta = m_datos.texto(1958);
        pregunta.replace(QLatin1String("[p1]"), mascaraMC.Formatear(debe));
        pregunta.replace(QLatin1String("[p2]"), mascaraMC.Formatear(haber));
        if (m_datos.mensajes->Preguntar(pregunta, ServicioMensajes::Botones::SiNo) != ServicioMensajes::Respuesta::Si) {
            comoEstaba();
            return false;
        }
        d.Estado = EstadoAsiento::kInconcluso;
        d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
    } else if (cierra && d.Estado == EstadoAsiento::kInconcluso) {
        d.Estado = m_comandos.EstadoCompleto(d.Fecha);
        d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
    }
    datos.Lineas() = m_asientos.LineasParaGrabar();
    const auto fallo = datos.GrabarTodo();
    // The entry is read again: the amounts as stored, or as they were when the write failed.
    comoEstaba();
    if (fallo)
        m_comandos.DecirRechazo(*fallo, 1934);
    return !fallo;
}

bool UnificacionTasa::ReglaTasas(RegistroLinea &linea, int filaEdicion)
{
    const qint16 mc = m_datos.empresa.monedaContabilidad;
    if (linea.iMon == mc || linea.iMon < 1 || linea.dImporte.esCero())
        return false;
    const double usada = m_asientos.BuscarTCMonedaCuenta(linea.iMon);
    const QString mascara = m_datos.monedas().DatoMoneda(linea.iMon, 5).toString();
    // Rates are compared, shown and rounded as the line editor shows them: a factor below 1
    // as its reciprocal (a yen at 0.25 is "/ 4").
    auto mostrada = [](double f) { return f > 0 && f < 1 ? 1 / f : f; };
    auto redondo = [&](double t) { return RedondearConMascara(mostrada(t), QStringLiteral("#,##0.000")); };
    if (usada == 0 || redondo(usada) == redondo(linea.dTCambio))
        return false;

    // The average over the lines kept and this one.
    Importe sumaME = linea.dImporte;
    Importe sumaMC = linea.dImporteMC;
    const int cabezal = m_asientos.Cabezal.FilaCabezal;
    for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
        if (r == filaEdicion || m_asientos.EsFilaDiferencia(r))
            continue;
        const RegistroLinea x = m_asientos.LineaDeFila(r);
        if (x.iMon == linea.iMon && !x.dImporte.esCero()) {
            sumaME += x.dImporte;
            sumaMC += x.dImporteMC;
        }
    }
    const double promedio = !sumaME.esCero() ? sumaMC.aDouble() / sumaME.aDouble() : linea.dTCambio;
    const Mascara tres(QStringLiteral("#,##0.000"));
    QString pregunta = m_datos.texto(1832);
    pregunta.replace(QLatin1String("[p]"), tres.Formatear(mostrada(linea.dTCambio)));
    pregunta.replace(QLatin1String("[p1]"), tres.Formatear(mostrada(promedio)));
    pregunta.replace(QLatin1String("[p2]"), tres.Formatear(mostrada(usada)));
    const auto respuesta = m_datos.mensajes->Preguntar(pregunta, ServicioMensajes::Botones::SiNoCancelar);
    double nueva = linea.dTCambio;
    if (respuesta == ServicioMensajes::Respuesta::No)
        nueva = promedio;
    else if (respuesta == ServicioMensajes::Respuesta::Cancelar)
        nueva = usada;
    nueva = nueva > 0 && nueva < 1 ? 1 / RedondearConMascara(1 / nueva, mascara) : RedondearConMascara(nueva, mascara);
    const bool mantenerMC = respuesta != ServicioMensajes::Respuesta::Cancelar && m_datos.Preguntar(1833);
    const QString mascaraMC = m_datos.monedas().DatoMoneda(0, 4).toString();
    const QString mascaraME = m_datos.monedas().DatoMoneda(linea.iMon, 4).toString();
    auto recalcular = [&](RegistroLinea &l) {
        l.dTCambio = nueva;
        if (mantenerMC)
            l.dImporte = ImporteConMascara(l.dImporteMC.aDouble() / nueva, mascaraME);
        else
            l.dImporteMC = ImporteConMascara(l.dImporte.aDouble() * nueva, mascaraMC);
    };
    recalcular(linea);
    if (respuesta != ServicioMensajes::Respuesta::Cancelar) {
        for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
            if (r == filaEdicion || m_asientos.EsFilaDiferencia(r))
                continue;
            RegistroLinea x = m_asientos.LineaDeFila(r);
            if (x.iMon != linea.iMon)
                continue;
            recalcular(x);
            x.ACuOrden = qint16(CampoDeClave(m_grilla.Dato(r, 1).toString(), 4));
            m_asientos.FilaLineaAsiento(r, x);
        }
        return true;
    }
    return false;
}
