#include "comandosasiento.h"

#include "frecuentesdeasiento.h"

#include "entries/vistas.h"
#include "services/serviciomensajes.h"

#include <QStringList>

#include <algorithm>

ComandosAsiento::ComandosAsiento(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_grilla(asientos.grilla())
    , m_pantalla(pantalla)
{
}

AsientoDatos ComandosAsiento::NuevoAsientoDatos() const
{
    AsientoDatos datos(*m_datos.conexion(), m_datos.librosSistema());
    datos.FijarUsuario(m_datos.usuario);
    datos.FijarTextos(m_datos.texto);
    return datos;
}

void ComandosAsiento::DecirRechazo(const Fallo &fallo, int textoComando) const
{
    if (fallo.numeroTexto == 0)
        m_datos.Error(textoComando, fallo.detalle);
    else
        m_datos.Error(fallo.numeroTexto, fallo.numeroTexto == AsientoDatos::kDescuadrado ? fallo.detalle : QString());
}

// The state a balanced entry is stored in when it becomes complete: registered, or a draft
// when the user keeps new entries as drafts or when it is dated after today.
qint16 ComandosAsiento::EstadoCompleto(const QDate &fecha) const
{
    if (m_datos.asiSaveB || fecha > m_datos.reloj().Hoy())
        return EstadoAsiento::kBorrador;
    return EstadoAsiento::kRegistrado;
}

// The entry of the grid's current row becomes the current entry; answers its header row,
// -1 when the row belongs to no entry.
int ComandosAsiento::TomarAsientoDeFilaActual()
{
    const int cabezal = m_asientos.FilaCabezalDe(m_pantalla.FilaActual());
    m_asientos.TomarAsientoDeFila(cabezal);
    return cabezal;
}

// Whether an account of the current entry's lines is closed at a date, from the closing
// dates the grid carries.
bool ComandosAsiento::HayCuentasCerradasEnGrilla(const QDate &fecha) const
{
    const int cabezal = m_asientos.Cabezal.FilaCabezal;
    if (cabezal < 0)
        return false;
    for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
        const QDate cierre = QDate::fromString(m_grilla.Dato(r, 2).toString(), Qt::ISODate);
        if (cierre.isValid() && fecha <= cierre && !m_asientos.EsFilaDiferencia(r))
            return true;
    }
    return false;
}

void ComandosAsiento::RegistrarAsiento()
{
    const int filaActual = m_pantalla.FilaActual();
    if (filaActual < m_grilla.FilasFijas() || !m_datos.conexion() || !m_datos.TienePermiso(u'M'))
        return;
    m_grilla.FijarRedibujar(false);
    const int cabezal = TomarAsientoDeFilaActual();
    CabezalAsiento &c = m_asientos.Cabezal;
    auto terminar = [&] {
        m_grilla.FijarRedibujar(true);
        m_pantalla.SeleccionarFila(filaActual);
        m_asientos.ResetCabezal();
    };
    const bool cierra = cabezal >= 0 && m_asientos.Cierra();
    if (cabezal < 0 || c.AsiEstado > EstadoAsiento::kInconcluso) {
        terminar();
        return;
    }
    // An incomplete entry is registered once it balances; until then Grabar says why not.
    if (c.AsiEstado == EstadoAsiento::kInconcluso && !cierra) {
        terminar();
        m_datos.Informar(1952);
        return;
    }
    if (c.AsiID <= 0) {
        // Never stored: storing it is registering it.
        GrabarAsientoCompleto(cierra);
        terminar();
        return;
    }
    if (c.AsiFechaAsiento > m_datos.reloj().Hoy() && c.AsiEstado == EstadoAsiento::kBorrador) {
        if (m_datos.Preguntar(1807)) {
            FrecuentesDeAsiento(m_datos, m_asientos, *this).AgendarEnLugarDelAsiento();
            m_grilla.FijarRedibujar(true);
            m_asientos.ResetCabezal();
            return;
        }
        m_grilla.FijarRedibujar(true);
        if (!m_datos.Preguntar(1838)) {
            terminar();
            return;
        }
        m_grilla.FijarRedibujar(false);
    }
    AsientoDatos datos = NuevoAsientoDatos();
    if (const auto fallo = datos.CargarAsiento(c.AsiID)) {
        DecirRechazo(*fallo, 1931);
        terminar();
        return;
    }
    const bool eraInconcluso = c.AsiEstado == EstadoAsiento::kInconcluso;
    qint16 nuevo = c.AsiEstado == EstadoAsiento::kRegistrado ? EstadoAsiento::kBorrador : EstadoAsiento::kRegistrado;
    if (eraInconcluso)
        nuevo = c.AsiFechaAsiento > m_datos.reloj().Hoy() ? EstadoAsiento::kBorrador : EstadoAsiento::kRegistrado;
    // A read that fails is told (1931) and stops the command.
    auto registrar = [&] {
        std::optional<bool> otraApertura = false;
        if (nuevo == EstadoAsiento::kRegistrado && c.AsiTipo != 0 && c.AsiTipo == m_datos.librosSistema().primeraApertura)
            otraApertura = m_datos.Leido(saldosIniciales().ExisteAsientoApertura(), 1931);
        if (!otraApertura)
            return;
        if (datos.Cabezal().FechaModificado != c.AsiFechaModificado) {
            m_datos.Error(1820);
            return;
        }
        if (*otraApertura) {
            // A second opening-balance entry is never registered.
            m_datos.Error(1837);
            return;
        }
        const auto cerradas = m_datos.Leido(datos.HayCuentasCerradas(datos.Cabezal().Fecha), 1931);
        if (!cerradas)
            return;
        if (*cerradas) {
            m_grilla.FijarRedibujar(true);
            m_datos.Error(1811);
            return;
        }
        datos.Cabezal().Estado = nuevo;
        datos.Cabezal().FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
        if (const auto fallo = datos.Grabar()) {
            DecirRechazo(*fallo, 1931);
        } else {
            c.AsiFechaModificado = datos.Cabezal().FechaModificado;
            c.AsiEstado = datos.Cabezal().Estado;
            m_asientos.ActualizarCabezalFila(cabezal, c.AsiFechaModificado, c.AsiEstado);
            // The proposal of a missing line goes with the incomplete state.
            if (eraInconcluso)
                RecargarAsiento(c.AsiID, cabezal);
        }
    };
    registrar();
    terminar();
}

void ComandosAsiento::RegistrarListados(qint16 estadoOrigen)
{
    if (!m_datos.conexion() || !m_datos.TienePermiso(u'M'))
        return;
    bool algunaFalla = false;
    std::optional<Fallo> falloBase;
    for (int r = m_grilla.FilasFijas(); r < m_grilla.Filas(); ++r) {
        if (!m_asientos.EsFilaCabezal(r) || m_grilla.Dato(r, 3).toInt() != estadoOrigen)
            continue;
        m_asientos.TomarAsientoDeFila(r);
        CabezalAsiento &c = m_asientos.Cabezal;
        if (c.AsiFechaAsiento > m_datos.reloj().Hoy() || c.AsiID <= 0)
            continue;
        // A second opening-balance entry is never registered.
        if (c.AsiTipo != 0 && c.AsiTipo == m_datos.librosSistema().primeraApertura) {
            const auto existe = saldosIniciales().ExisteAsientoApertura();
            if (!existe) {
                falloBase = existe.fallo();
                break;
            }
            if (*existe) {
                algunaFalla = true;
                continue;
            }
        }
        AsientoDatos datos = NuevoAsientoDatos();
        auto fallo = datos.CargarAsiento(c.AsiID);
        if (!fallo) {
            const auto cerradas = datos.HayCuentasCerradas(datos.Cabezal().Fecha);
            if (!cerradas) {
                falloBase = cerradas.fallo();
                break;
            }
            if (*cerradas || datos.Cabezal().FechaModificado != c.AsiFechaModificado) {
                algunaFalla = true;
                continue;
            }
            datos.Cabezal().Estado = EstadoAsiento::kRegistrado;
            datos.Cabezal().FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
            fallo = datos.Grabar();
        }
        // An entry refused is counted and the others go on; a failure of the database
        // stops the run and is told with its detail.
        if (fallo && fallo->deLaBase) {
            falloBase = fallo;
            break;
        }
        if (fallo) {
            algunaFalla = true;
            continue;
        }
        c.AsiEstado = EstadoAsiento::kRegistrado;
        m_asientos.ActualizarCabezalFila(r, datos.Cabezal().FechaModificado, c.AsiEstado);
    }
    if (falloBase)
        DecirRechazo(*falloBase, 1913);
    m_asientos.ResetCabezal();
    if (algunaFalla)
        m_datos.Advertir(1822);
}

bool ComandosAsiento::GrabarCabezal()
{
    CabezalAsiento &c = m_asientos.Cabezal;
    if (c.AsiID <= 0 || !m_datos.conexion())
        return false;
    AsientoDatos datos = NuevoAsientoDatos();
    if (const auto fallo = datos.CargarAsiento(c.AsiID)) {
        DecirRechazo(*fallo, 1923);
        return false;
    }
    CabezalDatos &d = datos.Cabezal();
    std::optional<bool> cerradas = false;
    if (d.Fecha != c.AsiFechaAsiento) {
        cerradas = m_datos.Leido(datos.HayCuentasCerradas(d.Fecha), 1923);
        if (cerradas && !*cerradas)
            cerradas = m_datos.Leido(datos.HayCuentasCerradas(c.AsiFechaAsiento), 1923);
    }
    if (!cerradas)
        return false;
    if (*cerradas) {
        m_datos.Error(1813);
        c.AsiFechaAsiento = d.Fecha;
        c.AsiEstado = d.Estado;
        c.AsiFechaModificado = d.FechaModificado;
        c.AsiLeyenda = d.Leyenda;
        c.AsiTipo = d.Libro;
        c.AsiUsuarioVerificador = d.Autoriza;
        return false;
    }
    if (d.FechaModificado != c.AsiFechaModificado) {
        m_datos.Error(1820);
        return false;
    }
    d.Leyenda = c.AsiLeyenda;
    d.Fecha = c.AsiFechaAsiento;
    // A registered entry moved into the future goes back to draft.
    if (c.AsiFechaAsiento > m_datos.reloj().Hoy() && d.Estado == EstadoAsiento::kRegistrado) {
        d.Estado = EstadoAsiento::kBorrador;
        d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
    }
    d.Libro = c.AsiTipo;
    d.Autoriza = c.AsiUsuarioVerificador;
    if (const auto fallo = datos.Grabar()) {
        DecirRechazo(*fallo, 1923);
        return false;
    }
    c.AsiFechaModificado = d.FechaModificado;
    c.AsiEstado = d.Estado;
    if (c.FilaCabezal >= 0)
        m_asientos.ActualizarCabezalFila(c.FilaCabezal, c.AsiFechaModificado, c.AsiEstado);
    return true;
}

bool ComandosAsiento::GrabarAsientoCompleto(bool asientoCierra)
{
    CabezalAsiento &c = m_asientos.Cabezal;
    if (!m_datos.conexion() || c.FilaCabezal < 0)
        return false;
    const qint16 estadoCerrado = m_datos.asiSaveB ? EstadoAsiento::kBorrador : EstadoAsiento::kRegistrado;
    AsientoDatos datos = NuevoAsientoDatos();
    CabezalDatos &d = datos.Cabezal();
    qint16 estado = asientoCierra ? estadoCerrado : EstadoAsiento::kInconcluso;
    qint16 estadoGuardado = EstadoAsiento::kNuevo;
    // No line of the entry, on its date as it stands, may use an account closed by then
    // (1811); a failed read is told with 1924. Both stop the save.
    auto sinCuentasCerradas = [&] {
        const auto cerradas = m_datos.Leido(datos.HayCuentasCerradas(d.Fecha), 1924);
        if (cerradas && *cerradas)
            m_datos.Error(1811);
        return cerradas && !*cerradas;
    };
    if (c.AsiID <= 0) {
        d.AsiID = 0;
        d.Empresa = m_datos.idEmpresa();
        d.Usuario = m_datos.usuario;
        d.Estado = estado;
        d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
    } else {
        if (const auto fallo = datos.CargarAsiento(c.AsiID)) {
            DecirRechazo(*fallo, 1924);
            return false;
        }
        // A stored entry with an account closed at its stored date cannot change at all,
        // whatever the grid read before another session closed the account.
        if (!sinCuentasCerradas())
            return false;
        if (d.FechaModificado != c.AsiFechaModificado) {
            m_datos.Error(1820);
            return false;
        }
        estadoGuardado = d.Estado;
        // A stored entry keeps its state while it balances; it becomes incomplete when it
        // stops balancing, and an incomplete one that balances again is saved as new ones are.
        if (asientoCierra && d.Estado != EstadoAsiento::kInconcluso)
            estado = d.Estado;
        if (estado != d.Estado) {
            d.Estado = estado;
            d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
        }
    }
    bool esApertura = false;
    if (asientoCierra && estadoGuardado == EstadoAsiento::kInconcluso && c.AsiTipo != 0
        && c.AsiTipo == m_datos.librosSistema().primeraApertura) {
        d.Libro = c.AsiTipo;
        if (!libroParaApertura(d, esApertura))
            return false;
        c.AsiTipo = d.Libro;
    }
    d.Leyenda = c.AsiLeyenda;
    d.Libro = c.AsiTipo;
    d.Fecha = c.AsiFechaAsiento;
    d.Autoriza = c.AsiUsuarioVerificador;
    // A registered entry dated in the future is a draft until its day, as a header
    // moved into the future makes it.
    if (d.Fecha > m_datos.reloj().Hoy() && d.Estado == EstadoAsiento::kRegistrado) {
        d.Estado = EstadoAsiento::kBorrador;
        d.FechaCambioEstado = AsientoDatos::SelloNuevo(m_datos.reloj(), QDateTime());
    }
    datos.Lineas() = m_asientos.LineasParaGrabar();
    if (!sinCuentasCerradas())
        return false;
    if (esApertura) {
        // The opening-balance entry may not use an account closed on or after the
        // opening-balance date.
        QStringList cuentas;
        for (const LineaDatos &l : std::as_const(datos.Lineas()))
            cuentas << QString::number(l.Cuenta);
        if (!cuentas.isEmpty()) {
            const auto cerradasApertura = m_datos.Leido(
                saldosIniciales().CuentasCerradasApertura(m_datos.fechaAsientoApertura, m_datos.empresa.clase, cuentas.join(QLatin1Char(','))),
                1924);
            if (!cerradasApertura)
                return false;
            if (!cerradasApertura->isEmpty()) {
                m_datos.Error(1811);
                return false;
            }
        }
    }
    if (const auto fallo = esApertura ? datos.GrabarApertura() : datos.GrabarTodo()) {
        DecirRechazo(*fallo, 1924);
        return false;
    }
    c.AsiID = d.AsiID;
    c.AsiEstado = d.Estado;
    c.AsiFechaModificado = d.FechaModificado;
    m_asientos.ActualizarCabezalFila(c.FilaCabezal, c.AsiFechaModificado, c.AsiEstado);
    return true;
}

// An incomplete entry of the opening-balance book that now balances becomes the
// opening-balance entry, unless the company has one already: then it is written with another
// book (the default book, else the first by name) after question 1836, or refused with 1837
// when there is no other book. False when nothing may be written.
bool ComandosAsiento::libroParaApertura(CabezalDatos &d, bool &esApertura)
{
    const auto existe = m_datos.Leido(saldosIniciales().ExisteAsientoApertura(), 1924);
    if (!existe)
        return false;
    if (!*existe) {
        esApertura = true;
        return true;
    }
    const auto comun = m_datos.Leido(LibroComun(), 1924);
    if (!comun)
        return false;
    const auto &libro = *comun;
    if (!libro) {
        m_datos.Error(1837);
        return false;
    }
    const auto &[nombre, codigo] = *libro;
    QString pregunta = m_datos.texto(1836);
    pregunta.replace(QLatin1String("[p]"), QLatin1Char('\'') + nombre + QLatin1Char('\''));
    if (m_datos.mensajes->Preguntar(pregunta, ServicioMensajes::Botones::SiNo) != ServicioMensajes::Respuesta::Si)
        return false;
    d.Libro = codigo;
    esApertura = false;
    return true;
}

Resultado<std::optional<std::pair<QString, qint16>>> ComandosAsiento::LibroComun() const
{
    const auto leidos = m_datos.LeerLibros(true);
    if (!leidos)
        return leidos.fallo();
    const auto &libros = *leidos;
    if (libros.isEmpty())
        return std::optional<std::pair<QString, qint16>>();
    const auto defecto = std::find_if(libros.begin(), libros.end(),
                                      [this](const auto &libro) { return libro.second == m_datos.empresa.libroPorDefecto; });
    return std::optional<std::pair<QString, qint16>>(defecto != libros.end() ? *defecto : libros.first());
}

SaldosIniciales ComandosAsiento::saldosIniciales() const
{
    return SaldosIniciales(*m_datos.conexion(), m_datos.librosSistema().primeraApertura, m_datos.idEmpresa(),
                           m_datos.parametros().delimitadorFecha, m_datos.parametros().formatoFecha);
}

bool ComandosAsiento::PuedeModificarApertura(int textoFallo)
{
    return m_datos.Leido(ModificableApertura(), textoFallo).value_or(false);
}

Resultado<bool> ComandosAsiento::ModificableApertura()
{
    AsientoDatos datos = NuevoAsientoDatos();
    const CabezalAsiento &c = m_asientos.Cabezal;
    const auto leido = datos.EstadoApertura(c.AsiFechaAsiento, m_datos.idEmpresa());
    if (!leido)
        return leido.fallo();
    const int estado = *leido;
    if (estado == 1) {
        m_datos.mensajes->MostrarError(m_datos.texto(1829), m_datos.texto(1000), QString());
        return false;
    }
    if (estado == 2) {
        m_datos.Advertir(1826);
        return false;
    }
    return true;
}

void ComandosAsiento::RecargarAsiento(qint32 asiID, int cabezal)
{
    // An entry another session deleted or sent to the trash has nothing to read: its rows go
    // rather than stay on screen as if they were stored.
    // When the stamps cannot be read the reading below fails too, says why, and the rows
    // stay as they are.
    if (const auto sellos = LeerSellos(*m_datos.conexion(), {asiID})) {
        const SelloGuardado guardado = sellos->value(asiID);
        if (!guardado.existe || guardado.estado == EstadoAsiento::kPapelera) {
            m_grilla.QuitarFilas(cabezal, m_asientos.UltimaFilaAsiento(cabezal) - cabezal + 1);
            return;
        }
    }
    // The entry as stored goes in above the rows shown, which are taken out only once it is
    // there: when the store cannot be read, the grid keeps the entry as it was.
    const int viejas = m_asientos.UltimaFilaAsiento(cabezal) - cabezal + 1;
    const int antes = m_grilla.Filas();
    CargarAsiento(asiID, cabezal);
    if (m_grilla.Filas() > antes)
        m_grilla.QuitarFilas(cabezal + (m_grilla.Filas() - antes), viejas);
}

Resultado<ComandosAsiento::Vigencia> ComandosAsiento::ReleerSiCambio(int cabezal)
{
    const qint32 id = m_asientos.IdDeFila(cabezal);
    if (id <= 0)
        return Vigencia::Vigente;
    const auto sellos = LeerSellos(*m_datos.conexion(), {id});
    if (!sellos)
        return sellos.fallo();
    const SelloGuardado guardado = sellos->value(id);
    if (guardado.Vigente(m_grilla.Dato(cabezal, 4).toDateTime()))
        return Vigencia::Vigente;
    if (!guardado.existe || guardado.estado == EstadoAsiento::kPapelera) {
        m_grilla.QuitarFilas(cabezal, m_asientos.UltimaFilaAsiento(cabezal) - cabezal + 1);
        m_datos.Error(1916, DetalleError(id, m_datos.texto(2136)));
        return Vigencia::Quitada;
    }
    RecargarAsiento(id, cabezal);
    return Vigencia::Releida;
}

void ComandosAsiento::CargarAsiento(qint32 asiID, int fila)
{
    m_pantalla.ActualizarContexto();
    if (const auto fallo = CargarAsientoEnGrilla(m_asientos, *m_datos.conexion(), asiID, fila))
        m_datos.MostrarFallo(*fallo);
}
