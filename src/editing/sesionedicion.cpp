#include "sesionedicion.h"

#include "frecuentesdeasiento.h"
#include "unificaciontasa.h"

#include "currency/importe.h"
#include "entries/vistas.h"
#include "services/serviciomensajes.h"

#include <algorithm>

SesionEdicion::SesionEdicion(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos,
                             VistaEdicion &vista)
    : m_datos(datos)
    , m_asientos(asientos)
    , m_grilla(asientos.grilla())
    , m_comandos(comandos)
    , m_vista(vista)
{
}

void SesionEdicion::NuevoAsiento()
{
    if (m_filaEdicion > 0 && !SalirEdicion())
        return;
    m_vista.SeleccionarFila(m_grilla.Filas() - 1);
    EntrarEdicion(m_grilla.Filas() - 1);
}

// Whether there are books for the header to offer; none when they could not be read, which
// is said (1910): a failure is not an empty list.
std::optional<bool> SesionEdicion::leerLibros()
{
    if (m_libros.isEmpty()) {
        const auto libros = m_datos.LeerLibros(true);
        if (!libros) {
            m_datos.Error(1910, libros.fallo().detalle);
            return std::nullopt;
        }
        m_libros = *libros;
        m_vista.FijarLibros(m_libros);
    }
    return !m_libros.isEmpty();
}

// The header values of the current entry, whose header row is cabezal.
std::optional<ValoresCabezal> SesionEdicion::valoresDelCabezal(int cabezal)
{
    const CabezalAsiento &c = m_asientos.Cabezal;
    ValoresCabezal v;
    v.fecha = c.AsiFechaAsiento.isValid() ? c.AsiFechaAsiento : m_datos.reloj().Hoy();
    v.fechaHabilitada = !(c.AsiID > 0 && m_comandos.HayCuentasCerradasEnGrilla(c.AsiFechaAsiento));
    auto ofrecido = [this](qint16 libro) {
        return std::any_of(m_libros.begin(), m_libros.end(), [libro](const auto &l) { return l.second == libro; });
    };
    // A book the list does not offer (the opening-balance book, or another system book) is
    // shown by name and kept: the entry cannot be moved to or from it here.
    m_libroFijo = c.AsiTipo != 0 && (c.AsiTipo == m_datos.librosSistema().primeraApertura || !ofrecido(c.AsiTipo));
    m_nombreLibroFijo = m_libroFijo ? m_grilla.Texto(cabezal, 4) : QString();
    v.libroFijo = m_nombreLibroFijo;
    // An entry without a book is offered the default book, the first one when there is none.
    if (c.AsiTipo > 0 && !m_libroFijo)
        v.libro = c.AsiTipo;
    else
        v.libro = ofrecido(m_datos.empresa.libroPorDefecto) ? m_datos.empresa.libroPorDefecto : m_libros.first().second;
    v.leyenda = c.AsiLeyenda;
    v.autoriza = c.AsiUsuarioVerificador;
    std::optional<bool> verificado = false;
    if (m_vista.ConAutoriza() && c.AsiID > 0)
        verificado = m_datos.Leido(AsientoVerificado(*m_datos.conexion(), c.AsiID), 1928);
    if (!verificado)
        return std::nullopt;
    v.autorizaHabilitado = !*verificado;
    return v;
}

bool SesionEdicion::EntrarEdicion(int fila)
{
    if (!m_datos.conexion() || fila < m_grilla.FilasFijas() || fila >= m_grilla.Filas())
        return false;
    const bool ultima = fila == m_grilla.Filas() - 1;
    if (!m_datos.TienePermiso(ultima ? u'A' : u'M'))
        return false;
    // A read that fails is told (1928) and leaves the edit.
    auto fallar = [this] {
        if (m_filaEdicion > 0)
            terminarEdicion(false);
        m_asientos.ResetCabezal();
        return false;
    };
    // A new entry: the placeholder becomes its header row and its first line, and a new
    // placeholder closes the grid again.
    if (ultima && m_asientos.EsFilaNuevoAsiento(fila)) {
        m_grilla.FijarRedibujar(false);
        m_asientos.ResetCabezal();
        m_asientos.Cabezal.AsiEstado = EstadoAsiento::kNuevo;
        m_asientos.Cabezal.FilaCabezal = fila;
        m_asientos.FilaCabezalAsiento(QString());
        m_grilla.InsertarFila(fila + 1);
        m_grilla.FijarDato(fila + 1, 0, 0);
        m_grilla.FijarDato(fila + 1, 1, QString()); // a line row with no account yet
        m_asientos.FilaNuevoAsiento();
        m_grilla.FijarRedibujar(true);
        fila = fila + 1;
    }
    const int cabezal = m_asientos.FilaCabezalDe(fila);
    if (cabezal < 0)
        return false;
    // An entry another session wrote since it was read is read again first, so the
    // user edits what is stored and the write is not refused as stale.
    const int desplazamiento = fila - cabezal;
    const auto vigencia = m_datos.Leido(m_comandos.ReleerSiCambio(cabezal), 1928);
    if (!vigencia)
        return fallar();
    switch (*vigencia) {
    case ComandosAsiento::Vigencia::Vigente:
        break;
    case ComandosAsiento::Vigencia::Releida:
        fila = std::min(cabezal + desplazamiento, m_asientos.UltimaFilaAsiento(cabezal));
        break;
    case ComandosAsiento::Vigencia::Quitada:
        return false;
    }
    m_asientos.TomarAsientoDeFila(cabezal);
    const CabezalAsiento &c = m_asientos.Cabezal;
    if (m_asientos.EsFilaCabezal(fila))
        fila = cabezal + 1 <= m_asientos.UltimaFilaAsiento(cabezal) ? cabezal + 1 : cabezal;
    m_filaEdicion = fila;
    m_escrituraRechazada = false;
    m_inalterable = false;

    if (c.AsiID > 0 && c.AsiTipo != 0 && c.AsiTipo == m_datos.librosSistema().primeraApertura) {
        const auto puede = m_datos.Leido(m_comandos.ModificableApertura(), 1928);
        if (!puede)
            return fallar();
        if (!*puede) {
            m_filaEdicion = 0;
            m_asientos.ResetCabezal();
            return false;
        }
    }
    m_grilla.FijarImagen(cabezal, QStringLiteral("edicion"));
    const auto hayLibros = leerLibros();
    if (!hayLibros || !*hayLibros) {
        terminarEdicion(false);
        if (hayLibros)
            m_datos.Informar(1828);
        return false;
    }
    const auto valores = valoresDelCabezal(cabezal);
    if (!valores)
        return fallar();
    m_abiertos = *valores;
    m_vista.AbrirCabezal(m_abiertos);
    cargarLineaEnEditor(fila);
    m_vista.MostrarEditor(fila, false);
    return true;
}

void SesionEdicion::cargarLineaEnEditor(int fila)
{
    const CabezalAsiento &c = m_asientos.Cabezal;
    bool debeMenor = false, cierra = false;
    Importe mc, me;
    m_asientos.CierreAsiento(debeMenor, mc, me, cierra);
    std::optional<std::pair<bool, Importe>> diferencia;
    if (!cierra)
        diferencia = std::make_pair(debeMenor, !me.esCero() ? me : mc);
    std::optional<RegistroLinea> linea;
    RegistroLinea l = m_asientos.LineaDeFila(fila);
    if (l.lCta > 0) {
        // A foreign line shows the rate the entry uses for its currency.
        const bool extranjera = l.iMon != m_datos.empresa.monedaContabilidad && l.iMon >= 1;
        const double tasa = extranjera ? m_asientos.BuscarTCMonedaCuenta(l.iMon) : 0;
        if (tasa != 0)
            l.dTCambio = tasa;
        linea = l;
    }
    m_vista.CargarEditor(c.AsiFechaAsiento.isValid() ? c.AsiFechaAsiento : m_datos.reloj().Hoy(), diferencia, linea);
}

void SesionEdicion::AgregarCuenta()
{
    // Leaving an edit re-reads that entry and leaves its header row current.
    if (m_filaEdicion > 0 && !SalirEdicion())
        return;
    const int cabezal = m_asientos.FilaCabezalDe(m_vista.FilaActual());
    if (cabezal < 0)
        return;
    m_asientos.TomarAsientoDeFila(cabezal);
    int ultima = m_asientos.UltimaFilaAsiento(cabezal);
    if (m_asientos.EsFilaDiferencia(ultima))
        --ultima;
    m_grilla.InsertarFila(ultima + 1);
    m_grilla.FijarDato(ultima + 1, 0, m_asientos.Cabezal.AsiID);
    m_grilla.FijarDato(ultima + 1, 1, QString()); // a line row with no account yet
    m_asientos.ResetCabezal();
    m_vista.SeleccionarFila(ultima + 1);
    EntrarEdicion(ultima + 1);
}

// Writes the accepted line into the edited row (a second row for the credit account of a
// line that carries both).
void SesionEdicion::escribirLinea(int fila, const RegistroLinea &linea)
{
    RegistroLinea l = linea;
    if (m_asientos.EsFilaDiferencia(fila) || m_grilla.Dato(fila, 1).toString().isEmpty()) {
        // A new line comes after every line of the entry.
        int orden = 0;
        const int cabezal = m_asientos.Cabezal.FilaCabezal;
        for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r)
            if (!m_asientos.EsFilaDiferencia(r))
                orden = std::max(orden, CampoDeClave(m_grilla.Dato(r, 1).toString(), 4));
        l.ACuOrden = qint16(orden + 1);
    } else {
        l.ACuOrden = qint16(CampoDeClave(m_grilla.Dato(fila, 1).toString(), 4));
    }
    m_asientos.FilaLineaAsiento(fila, l);
}

void SesionEdicion::AceptarLinea()
{
    CabezalAsiento &c = m_asientos.Cabezal;
    if (m_filaEdicion <= 0 || c.FilaCabezal < 0)
        return;
    const ValoresCabezal cabezal = m_vista.LeerCabezal();
    if (!cabezal.fecha.isValid()) {
        m_vista.EnfocarFecha();
        return;
    }
    const QDate fecha = cabezal.fecha;
    QVector<RegistroLinea> lineas;
    for (bool debe : {true, false}) {
        const std::optional<ValorLinea> valor = m_vista.LineaDelEditor(debe);
        if (!valor)
            continue;
        const ValorLinea &v = *valor;
        RegistroLinea l;
        l.bEsAlDebe = debe;
        l.lCta = v.lCta;
        l.iPry = v.iPry;
        l.iDep = v.iDep;
        l.iMon = v.iMon;
        l.sTextDisplay = v.sTextDisplay;
        l.dFechaCierre = v.dFechaCierre.isValid() && v.dFechaCierre > QDate(1901, 1, 1) ? v.dFechaCierre.toString(Qt::ISODate) : QString();
        const bool extranjera = v.iMon != m_datos.empresa.monedaContabilidad && v.iMon >= 1;
        l.dImporte = v.dImporte;
        l.dImporteMC = extranjera ? v.dImporteMC : v.dImporte;
        l.dTCambio = extranjera ? v.dTCambio : (v.dImporte.esCero() ? 0 : 1);
        lineas.append(l);
    }
    if (lineas.isEmpty())
        return;

    // A typed line of nothing books nothing (a stored one accepted unchanged stays as it is).
    const bool tecleada = LineaSinAceptar();
    for (const RegistroLinea &l : std::as_const(lineas)) {
        if (tecleada && l.dImporte.esCero() && l.dImporteMC.esCero()) {
            m_datos.Advertir(1954);
            return;
        }
    }
    for (const RegistroLinea &l : std::as_const(lineas)) {
        if (l.dImporte.esCero() && !l.dImporteMC.esCero() && !m_datos.Preguntar(1819))
            return;
    }
    // Closed accounts: an account of the stored entry closed at its date cannot change
    // (1815); a date on or before an account's closing is not admitted (1821).
    for (const RegistroLinea &l : std::as_const(lineas)) {
        const QDate cierre = QDate::fromString(l.dFechaCierre, Qt::ISODate);
        if (!cierre.isValid() || fecha > cierre)
            continue;
        // The edited row still carries the key it was loaded with: its account counts as one
        // of the stored entry's.
        bool delAsiento = false;
        for (int r = c.FilaCabezal + 1; r <= m_asientos.UltimaFilaAsiento(c.FilaCabezal); ++r)
            delAsiento = delAsiento || m_asientos.LineaDeFila(r).lCta == l.lCta;
        if (c.AsiID > 0 && delAsiento) {
            m_datos.Error(1815);
        } else {
            m_datos.Error(1821);
            if (c.AsiID > 0)
                m_vista.FijarFecha(c.AsiFechaAsiento);
            m_vista.EnfocarFecha();
        }
        return;
    }
    if (c.AsiID > 0 && fecha != c.AsiFechaAsiento && m_comandos.HayCuentasCerradasEnGrilla(fecha)) {
        m_datos.Error(1821);
        m_vista.FijarFecha(c.AsiFechaAsiento);
        m_vista.EnfocarFecha();
        return;
    }
    // A stored entry with an account closed at its date cannot change at all: refused before
    // anything of it is written, so no header change goes through without its lines.
    if (c.AsiID > 0 && m_comandos.HayCuentasCerradasEnGrilla(c.AsiFechaAsiento)) {
        m_datos.Error(1811);
        m_inalterable = true;
        return;
    }
    for (RegistroLinea &l : lineas)
        if (UnificacionTasa(m_datos, m_asientos, m_vista, m_comandos).ReglaTasas(l, m_filaEdicion))
            m_pendiente = true;

    // The line goes into the grid; the header row takes the header fields.
    m_grilla.FijarRedibujar(false);
    escribirLinea(m_filaEdicion, lineas[0]);
    if (lineas.size() > 1) {
        m_grilla.InsertarFila(m_filaEdicion + 1);
        m_grilla.FijarDato(m_filaEdicion + 1, 0, c.AsiID);
        escribirLinea(m_filaEdicion + 1, lineas[1]);
    }
    // A book shown by name and an authoriser list the company does not show keep the
    // entry's values.
    const qint16 libro = m_libroFijo ? c.AsiTipo : cabezal.libro;
    const qint16 autoriza = m_vista.ConAutoriza() ? cabezal.autoriza : c.AsiUsuarioVerificador;
    const QString leyenda = cabezal.leyenda.trimmed();
    const bool cabezalCambiado = c.AsiFechaAsiento != fecha || c.AsiLeyenda != leyenda || c.AsiTipo != libro
                              || c.AsiUsuarioVerificador != autoriza;
    c.AsiFechaAsiento = fecha;
    c.AsiLeyenda = leyenda;
    c.AsiTipo = libro;
    c.AsiUsuarioVerificador = autoriza;
    m_abiertos = cabezal;
    m_asientos.FilaCabezalAsiento(nombreLibro(c.AsiTipo));
    m_grilla.FijarImagen(c.FilaCabezal, QStringLiteral("edicion"));
    // The old proposal of the missing line goes; a new one is made below when still needed.
    for (int r = m_asientos.UltimaFilaAsiento(c.FilaCabezal); r > c.FilaCabezal; --r)
        if (m_asientos.EsFilaDiferencia(r))
            m_grilla.QuitarFila(r);
    m_grilla.FijarRedibujar(true);
    m_pendiente = true;

    bool escrito = false;
    // Whether the whole entry balances now, whatever the line just taken carried: a line
    // with both accounts balances itself but not the lines before it.
    const bool cierra = m_asientos.Cierra();
    if (cierra) {
        escrito = m_comandos.GrabarAsientoCompleto(true);
        m_pendiente = !escrito;
        if (!escrito) {
            // The message is shown once; the edit stays open with what was typed, and
            // leaving it shows the entry as stored.
            m_escrituraRechazada = true;
            return;
        }
    } else if (c.AsiID > 0 && cabezalCambiado) {
        m_comandos.GrabarCabezal();
    }

    if (escrito && c.AsiFechaAsiento > m_datos.reloj().Hoy() && m_datos.Preguntar(1807)) {
        if (FrecuentesDeAsiento(m_datos, m_asientos, m_comandos).AgendarEnLugarDelAsiento()) {
            // The entry's rows are gone from the grid: no row of it is left to tidy up.
            c.FilaCabezal = -1;
            m_filaEdicion = 0;
            terminarEdicion(false);
        } else {
            terminarEdicion(true);
        }
        return;
    }
    if (escrito) {
        terminarEdicion(true);
        return;
    }
    // Still unbalanced: the next line is typed below, with the missing amount proposed.
    abrirLineaNueva();
}

// Opens a new row after the current entry's last line for the next line, with the missing
// amount proposed below it.
void SesionEdicion::abrirLineaNueva()
{
    const CabezalAsiento &c = m_asientos.Cabezal;
    int ultima = m_asientos.UltimaFilaAsiento(c.FilaCabezal);
    for (; ultima > c.FilaCabezal && m_asientos.EsFilaDiferencia(ultima); --ultima)
        m_grilla.QuitarFila(ultima);
    m_grilla.InsertarFila(ultima + 1);
    m_grilla.FijarDato(ultima + 1, 0, c.AsiID);
    m_grilla.FijarDato(ultima + 1, 1, QString()); // a line row with no account yet
    m_filaEdicion = ultima + 1;
    // The proposal of the missing line shows below the line being typed.
    m_asientos.FilaDiferencia(m_filaEdicion + 1, true);
    m_vista.SeleccionarFila(m_filaEdicion);
    cargarLineaEnEditor(m_filaEdicion);
    m_vista.MostrarEditor(m_filaEdicion, true);
}

// A stored entry whose header the user changed without accepting a line: the changes are
// written as the header alone. What was only proposed (the default book) is no change, and a
// date that cannot be read is left as stored. False when the write was refused (it said why).
bool SesionEdicion::guardarCabezalCambiado()
{
    CabezalAsiento &c = m_asientos.Cabezal;
    const ValoresCabezal v = m_vista.LeerCabezal();
    const QDate fecha = v.fecha.isValid() && v.fechaHabilitada ? v.fecha : m_abiertos.fecha;
    const bool cambiado = fecha != m_abiertos.fecha || v.leyenda.trimmed() != m_abiertos.leyenda.trimmed()
                       || (!m_libroFijo && v.libro != m_abiertos.libro)
                       || (m_vista.ConAutoriza() && v.autoriza != m_abiertos.autoriza);
    if (!cambiado)
        return true;
    if (fecha != c.AsiFechaAsiento && m_comandos.HayCuentasCerradasEnGrilla(fecha)) {
        m_datos.Error(1821);
        return false;
    }
    CabezalAsiento nuevo = c;
    nuevo.AsiFechaAsiento = fecha;
    nuevo.AsiLeyenda = v.leyenda.trimmed();
    if (!m_libroFijo)
        nuevo.AsiTipo = v.libro;
    if (m_vista.ConAutoriza())
        nuevo.AsiUsuarioVerificador = v.autoriza;
    const CabezalAsiento antes = c;
    c = nuevo;
    if (m_comandos.GrabarCabezal()) {
        m_abiertos = v;
        m_abiertos.fecha = fecha;
        return true;
    }
    // Refused: the entry keeps what it had; the screen keeps what was typed.
    c = antes;
    return false;
}

bool SesionEdicion::LineaSinAceptar() const
{
    const std::optional<ValorLinea> debe = m_vista.LineaDelEditor(true);
    const std::optional<ValorLinea> haber = m_vista.LineaDelEditor(false);
    if (!debe && !haber)
        return false;
    if (debe && haber)
        return true; // a line with both accounts is no row's yet
    const ValorLinea &v = debe ? *debe : *haber;
    const RegistroLinea fila = m_asientos.LineaDeFila(m_filaEdicion);
    if (fila.lCta <= 0 || m_asientos.EsFilaDiferencia(m_filaEdicion))
        return true;
    const bool extranjera = v.iMon != m_datos.empresa.monedaContabilidad && v.iMon >= 1;
    return fila.lCta != v.lCta || fila.bEsAlDebe != debe.has_value() || fila.iPry != v.iPry || fila.iDep != v.iDep
        || fila.dImporte != v.dImporte || (extranjera && fila.dImporteMC != v.dImporteMC);
}

SesionEdicion::Decision SesionEdicion::decidir(Salida salida, int pregunta) const
{
    if (salida == Salida::Cierre)
        return Decision::Grabar;
    switch (m_datos.mensajes->Preguntar(m_datos.texto(pregunta), ServicioMensajes::Botones::SiNoCancelar)) {
    case ServicioMensajes::Respuesta::Si:
        return Decision::Grabar;
    case ServicioMensajes::Respuesta::No:
        return Decision::Descartar;
    default:
        return Decision::Volver;
    }
}

// Writes what the edit changed and is not stored: the accepted lines (incomplete when they
// do not balance) or a stored entry's header. False when the write was refused (it said why);
// escrito tells whether the whole entry was written.
bool SesionEdicion::escribirAlSalir(bool &escrito)
{
    CabezalAsiento &c = m_asientos.Cabezal;
    if (c.FilaCabezal < 0)
        return true;
    if (!m_pendiente)
        return c.AsiID <= 0 || guardarCabezalCambiado();
    // The row being typed is no line yet; without it the entry is what was accepted.
    if (m_grilla.Dato(m_filaEdicion, 1).toString().isEmpty() && !m_asientos.EsFilaCabezal(m_filaEdicion)) {
        m_grilla.QuitarFila(m_filaEdicion);
        m_filaEdicion = c.FilaCabezal;
    }
    escrito = m_comandos.GrabarAsientoCompleto(m_asientos.Cierra());
    m_pendiente = !escrito;
    return escrito;
}

bool SesionEdicion::SalirEdicion(Salida salida)
{
    if (m_filaEdicion <= 0)
        return true;
    // An entry that cannot change at all was said so (1811): nothing of the edit can be
    // stored, so there is nothing to ask; it is shown as stored.
    if (m_inalterable) {
        terminarEdicion(m_asientos.Cabezal.AsiID > 0);
        return true;
    }
    if (LineaSinAceptar()) {
        switch (decidir(salida, 1956)) {
        case Decision::Volver:
            m_vista.RetomarEdicion(m_filaEdicion);
            return false;
        case Decision::Descartar:
            break;
        case Decision::Grabar:
            AceptarLinea();
            if (m_filaEdicion <= 0)
                return true; // accepted and written: the edit is over
            // Refused (it said why, and the line is still typed), or its write was refused.
            if ((LineaSinAceptar() || m_escrituraRechazada) && salida != Salida::Cierre)
                return false;
            break;
        }
    }
    bool escrito = false;
    for (;;) {
        if (!m_escrituraRechazada && escribirAlSalir(escrito))
            break;
        m_escrituraRechazada = true;
        if (salida == Salida::Cierre)
            break;
        const Decision d = decidir(salida, 1961);
        if (d == Decision::Descartar)
            break;
        if (d == Decision::Volver) {
            // Everything typed stays on screen, the edit open.
            if (m_filaEdicion == m_asientos.Cabezal.FilaCabezal)
                abrirLineaNueva();
            else
                m_vista.RetomarEdicion(m_filaEdicion);
            return false;
        }
        m_escrituraRechazada = false; // once more
    }
    // A stored entry is shown as stored: what was written, or, after a refusal, as it was.
    terminarEdicion(escrito || m_asientos.Cabezal.AsiID > 0);
    return true;
}

bool SesionEdicion::SalirEdicionEnLaFila()
{
    const qint32 id = m_asientos.IdDeFila(m_filaEdicion);
    const QString clave = m_grilla.Dato(m_filaEdicion, 1).toString();
    if (!SalirEdicion())
        return false;
    if (id <= 0 || clave.isEmpty() || clave == AsientosGrilla::kClaveDiferencia)
        return false;
    const int cabezal = m_asientos.FilaCabezalDe(m_vista.FilaActual());
    if (cabezal < 0 || m_asientos.IdDeFila(cabezal) != id)
        return false;
    for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
        if (m_grilla.Dato(r, 1).toString() == clave) {
            m_vista.SeleccionarFila(r);
            return true;
        }
    }
    return false;
}

// Leaves edit mode. A stored entry's rows are read again from the store; an entry that was
// never stored goes when nothing of it could be written.
void SesionEdicion::terminarEdicion(bool recargar)
{
    CabezalAsiento &c = m_asientos.Cabezal;
    int seleccion = -1;
    m_grilla.FijarRedibujar(false);
    if (c.FilaCabezal >= 0 && c.FilaCabezal < m_grilla.Filas()) {
        const int cabezal = c.FilaCabezal;
        seleccion = cabezal;
        if (m_filaEdicion > 0 && m_filaEdicion < m_grilla.Filas() && m_grilla.Dato(m_filaEdicion, 1).toString().isEmpty()
            && !m_asientos.EsFilaCabezal(m_filaEdicion) && !m_asientos.EsFilaNuevoAsiento(m_filaEdicion))
            m_grilla.QuitarFila(m_filaEdicion);
        const int ultima = m_asientos.UltimaFilaAsiento(cabezal);
        if (recargar && c.AsiID > 0) {
            m_comandos.RecargarAsiento(c.AsiID, cabezal);
        } else if (c.AsiID <= 0 && (ultima == cabezal || m_escrituraRechazada)) {
            // Never stored, and nothing of it could be: its rows go.
            m_grilla.QuitarFilas(cabezal, ultima - cabezal + 1);
        } else if (m_asientos.EsFilaCabezal(cabezal)) {
            m_asientos.ClaveEstado(cabezal, c.AsiEstado);
            m_asientos.FormatoEntrada();
        }
    }
    m_grilla.FijarRedibujar(true);
    m_filaEdicion = 0;
    m_pendiente = false;
    m_libroFijo = false;
    m_nombreLibroFijo.clear();
    m_escrituraRechazada = false;
    m_inalterable = false;
    m_asientos.ResetCabezal();
    // The entry just left stays the current row, in view.
    if (seleccion < m_grilla.FilasFijas() || seleccion >= m_grilla.Filas())
        seleccion = m_grilla.Filas() - 1;
    m_vista.CerrarEdicion(seleccion);
}

// The name of a book: from the list the header offers, or the name of the book shown fixed.
QString SesionEdicion::nombreLibro(qint16 libro) const
{
    for (const auto &[nombre, codigo] : m_libros)
        if (codigo == libro)
            return nombre;
    return m_libroFijo ? m_nombreLibroFijo : QString();
}

