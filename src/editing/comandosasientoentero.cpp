#include "comandosasientoentero.h"

#include "services/serviciomensajes.h"

ComandosAsientoEntero::ComandosAsientoEntero(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla,
                                             ComandosAsiento &comandos)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_grilla(asientos.grilla())
    , m_pantalla(pantalla)
    , m_comandos(comandos)
{
}

void ComandosAsientoEntero::EliminarAsiento(bool porFila)
{
    if (!m_datos.TienePermiso(u'E') || !m_datos.conexion())
        return;
    const int fila = m_pantalla.FilaActual();
    const int cabezal = m_asientos.FilaCabezalDe(fila);
    if (cabezal < m_grilla.FilasFijas())
        return;
    // A row deletion on the header row, or of the only line of the entry, is the deletion of
    // the whole entry.
    if (porFila) {
        int lineas = 0;
        for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r)
            lineas += m_asientos.EsFilaDiferencia(r) ? 0 : 1;
        if (fila == cabezal || lineas <= 1)
            porFila = false;
    }
    m_asientos.TomarAsientoDeFila(cabezal);
    CabezalAsiento &c = m_asientos.Cabezal;
    const LibrosSistema libros = m_datos.librosSistema();
    const int textoFallo = porFila ? 1919 : 1918;
    if (porFila) {
        if (c.AsiTipo != 0
            && (c.AsiTipo == libros.resumen || c.AsiTipo == libros.adc || c.AsiTipo == libros.apertura || c.AsiTipo == libros.cierre)) {
            m_datos.Advertir(1817);
        } else if (c.AsiTipo != 0 && c.AsiTipo == libros.primeraApertura && !m_comandos.PuedeModificarApertura(textoFallo)) {
        } else if (!m_datos.Preguntar(1805)) {
        } else if (m_comandos.HayCuentasCerradasEnGrilla(c.AsiFechaAsiento)) {
            m_datos.Advertir(1814);
        } else if (m_asientos.EsFilaDiferencia(fila)) {
            // The proposal of the missing line is no line: it just goes.
            m_grilla.QuitarFila(fila);
        } else if (c.AsiID <= 0) {
            m_grilla.QuitarFila(fila);
        } else {
            AsientoDatos datos = m_comandos.NuevoAsientoDatos();
            std::optional<bool> cerradas;
            if (const auto fallo = datos.CargarAsiento(c.AsiID)) {
                m_comandos.DecirRechazo(*fallo, 1919);
            } else if (datos.Cabezal().FechaModificado != c.AsiFechaModificado) {
                m_datos.Error(1820);
            } else if (cerradas = m_datos.Leido(datos.HayCuentasCerradas(datos.Cabezal().Fecha), 1919); !cerradas) {
                // Told; the line stays.
            } else if (*cerradas) {
                m_datos.Advertir(1814);
            } else {
                // The stored line of the row: by its place in the order of entry, which
                // tells apart two lines of one account; else by account and side.
                const RegistroLinea l = m_asientos.LineaDeFila(fila);
                const int orden = CampoDeClave(m_grilla.Dato(fila, 1).toString(), 4);
                QVector<LineaDatos> &lineas = datos.Lineas();
                auto misma = [&](const LineaDatos &x) {
                    return x.Cuenta == l.lCta && x.Proyecto == l.iPry && x.Departamento == l.iDep && x.AlDebe == l.bEsAlDebe;
                };
                auto it = std::find_if(lineas.begin(), lineas.end(),
                                       [&](const LineaDatos &x) { return orden > 0 && x.Orden == orden && misma(x); });
                if (it == lineas.end())
                    it = std::find_if(lineas.begin(), lineas.end(), misma);
                if (it != lineas.end())
                    lineas.erase(it);
                // An entry that no longer balances is incomplete: it cannot stay
                // registered, nor be registered again, until it balances. An incomplete
                // one that balances without the line is complete again.
                if (const auto balance = m_datos.Leido(datos.Balance(), 1919)) {
                    qint16 &estado = datos.Cabezal().Estado;
                    const qint16 antes = estado;
                    if (!balance->cierra)
                        estado = EstadoAsiento::kInconcluso;
                    else if (estado == EstadoAsiento::kInconcluso)
                        estado = m_comandos.EstadoCompleto(datos.Cabezal().Fecha);
                    if (estado != antes)
                        datos.Cabezal().FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
                    if (const auto fallo = datos.GrabarTodo()) {
                        m_comandos.DecirRechazo(*fallo, 1919);
                    } else {
                        m_grilla.FijarRedibujar(false);
                        m_comandos.RecargarAsiento(c.AsiID, cabezal);
                        m_grilla.FijarRedibujar(true);
                    }
                }
            }
        }
    } else if (c.AsiID > 0 && c.AsiTipo != 0 && c.AsiTipo == libros.primeraApertura && !m_comandos.PuedeModificarApertura(textoFallo)) {
        // The opening-balance entry goes only when a line of it could: PuedeModificarApertura said why.
    } else if (!m_datos.Preguntar(1804)) {
    } else if (c.AsiID <= 0) {
        m_grilla.QuitarFilas(cabezal, m_asientos.UltimaFilaAsiento(cabezal) - cabezal + 1);
    } else {
        AsientoDatos datos = m_comandos.NuevoAsientoDatos();
        QStringList ids;
        if (const auto fallo = datos.EnviarPapelera(c.AsiID, c.AsiFechaModificado, &ids)) {
            m_comandos.DecirRechazo(*fallo, 1918);
        } else {
            m_grilla.FijarRedibujar(false);
            for (const QString &id : std::as_const(ids))
                m_asientos.QuitarAsientoDeGrilla(id.toInt());
            m_grilla.FijarRedibujar(true);
        }
    }
    m_asientos.ResetCabezal();
    m_pantalla.SeleccionarFila(std::min(fila, m_grilla.Filas() - 1));
}

void ComandosAsientoEntero::CopiarAsiento()
{
    const int cabezal = m_asientos.FilaCabezalDe(m_pantalla.FilaActual());
    if (cabezal < 0 || !m_datos.conexion() || !m_datos.TienePermiso(u'A'))
        return;
    if (m_datos.mensajes->Preguntar(m_datos.texto(1806), ServicioMensajes::Botones::SiNo, m_datos.texto(1024))
        != ServicioMensajes::Respuesta::Si)
        return;
    AsientoDatos datos = m_comandos.NuevoAsientoDatos();
    const qint32 original = m_asientos.IdDeFila(cabezal);
    // An entry never stored has nothing to copy.
    const auto fallo = original > 0 ? datos.CargarAsiento(original) : Fallo{};
    if (fallo) {
        m_comandos.DecirRechazo(*fallo, 1915);
        m_asientos.ResetCabezal();
        return;
    }
    datos.Cabezal().AsiID = 0;
    datos.Cabezal().FechaModificado = QDateTime();
    // A copy of the opening-balance entry is an ordinary entry: there is one of those.
    if (datos.Cabezal().Libro != 0 && datos.Cabezal().Libro == m_datos.librosSistema().primeraApertura) {
        const auto comun = m_datos.Leido(m_comandos.LibroComun(), 1915);
        if (!comun) {
            m_asientos.ResetCabezal();
            return;
        }
        if (!*comun) {
            m_datos.Error(1837);
            return;
        }
        datos.Cabezal().Libro = (*comun)->second;
    }
    datos.Cabezal().Usuario = m_datos.usuario;
    datos.Cabezal().FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime()); // the copy's own
    const auto cerradas = m_datos.Leido(datos.HayCuentasCerradas(datos.Cabezal().Fecha), 1915);
    if (!cerradas) {
        m_asientos.ResetCabezal();
        return;
    }
    if (*cerradas) {
        m_datos.mensajes->Informar(m_datos.texto(1816));
        return;
    }
    if (const auto fallo = datos.GrabarTodo()) {
        m_comandos.DecirRechazo(*fallo, 1915);
        m_asientos.ResetCabezal();
        return;
    }
    m_comandos.CargarAsiento(datos.Cabezal().AsiID, m_grilla.Filas() - 1);
    m_pantalla.SeleccionarFila(m_grilla.Filas() - 1);
    m_asientos.ResetCabezal();
}

void ComandosAsientoEntero::OcultarAsiento()
{
    const int cabezal = m_asientos.FilaCabezalDe(m_pantalla.FilaActual());
    if (cabezal < 0)
        return;
    m_grilla.FijarRedibujar(false);
    m_grilla.QuitarFilas(cabezal, m_asientos.UltimaFilaAsiento(cabezal) - cabezal + 1);
    m_grilla.FijarRedibujar(true);
    m_asientos.ResetCabezal();
    m_pantalla.SeleccionarFila(std::min(cabezal, m_grilla.Filas() - 1));
}
