#include "asientosgrilla.h"

#include "currency/catalogomonedas.h"
#include "currency/importe.h"
#include "currency/mascara.h"
#include "store/valoressql.h"

#include <QFontMetrics>
#include <QHash>

#include <algorithm>


const QString AsientosGrilla::kClaveDiferencia = QStringLiteral("-1|0|0|0|999");
const QString AsientosGrilla::kTextoDiferencia = QStringLiteral("................?");

void PrepararGrillaAsientos(Grilla &grilla, const QString &encabezados)
{
    // Column 0 takes what the others leave when a view is loaded.
    const int anchos[] = {3600, 4000, 1500, 1500, 1300, 1500};
    for (int c = 0; c < grilla.Columnas() && c < 6; ++c)
        grilla.FijarAnchoColumna(c, anchos[c]);
    grilla.FijarEncabezados(encabezados);
}

AsientosGrilla::AsientosGrilla(Grilla &grilla, ContextoAsientos &contexto)
    : m_g(grilla)
    , m_ctx(contexto)
{
    ResetCabezal();
}

QString AsientosGrilla::mascaraImporte(qint16 moneda)
{
    return m_ctx.monedas ? m_ctx.monedas->DatoMoneda(moneda, 4).toString() : QStringLiteral("#,##0.00");
}

const Mascara &AsientosGrilla::mascaraLeida(const QString &mascara)
{
    auto it = m_mascaras.find(mascara);
    if (it == m_mascaras.end())
        it = m_mascaras.insert(mascara, Mascara(mascara));
    return *it;
}

bool AsientosGrilla::tieneTexto(int fila, int columna) const
{
    return m_g.EsNumero(fila, columna) || m_g.celda(fila, columna).texto != 0;
}

bool AsientosGrilla::EsFilaCabezal(int fila) const
{
    return fila >= m_g.FilasFijas() && fila < m_g.Filas() && m_g.HayDato(fila, 0) && !m_g.HayDato(fila, 1);
}

bool AsientosGrilla::EsFilaDiferencia(int fila) const
{
    return m_g.DatoTexto(fila, 1) == kClaveDiferencia;
}

bool AsientosGrilla::EsFilaNuevoAsiento(int fila) const
{
    return fila >= m_g.FilasFijas() && !m_g.HayDato(fila, 0);
}

qint32 AsientosGrilla::IdDeFila(int fila) const
{
    return m_g.DatoEntero(fila, 0);
}

int AsientosGrilla::FilaCabezalDe(int fila) const
{
    if (fila >= m_g.Filas() || EsFilaNuevoAsiento(fila))
        return -1;
    while (fila >= m_g.FilasFijas() && !EsFilaCabezal(fila))
        --fila;
    return fila >= m_g.FilasFijas() ? fila : -1;
}

int AsientosGrilla::UltimaFilaAsiento(int filaCabezal) const
{
    const int id = m_g.DatoEntero(filaCabezal, 0);
    int r = filaCabezal;
    while (r + 1 < m_g.Filas() && !EsFilaCabezal(r + 1) && m_g.HayDato(r + 1, 0) && m_g.DatoEntero(r + 1, 0) == id)
        ++r;
    return r;
}

// The legends of all header rows start at one position whatever the date's width: the date
// is followed by enough blanks to fill 1000 twips, measured in the document's font.
int AsientosGrilla::anchoRelleno()
{
    if (m_ctx.rellenoFijo >= 0)
        return m_ctx.rellenoFijo;
    if (m_relleno >= 0 && m_fuenteRelleno == m_ctx.fuente)
        return m_relleno;
    const QFontMetricsF fm(m_ctx.fuente);
    const double aTwips = 1440.0 / (m_ctx.puntosPorPulgada > 0 ? m_ctx.puntosPorPulgada : 96.0);
    const double w = fm.horizontalAdvance(QStringLiteral("88/88/88     ")) * aTwips;
    const double blanco = fm.horizontalAdvance(QLatin1Char(' ')) * aTwips;
    m_relleno = w < 1000 && blanco > 0 ? int((1000 - int(w)) / int(std::max(1.0, blanco))) : 0;
    m_fuenteRelleno = m_ctx.fuente;
    return m_relleno;
}

bool EsFilaCabezal(const Grilla &g, int fila)
{
    return fila >= g.FilasFijas() && g.HayDato(fila, 0) && !g.HayDato(fila, 1);
}

RangoCeldas RangoCombinado(const Grilla &g, int fila, int columna)
{
    RangoCeldas r{fila, columna, fila, columna};
    if (g.Columnas() >= 6 && EsFilaCabezal(g, fila)) {
        if (columna >= 1 && columna <= 3) {
            r.columna1 = 1;
            r.columna2 = 3;
        } else if (columna >= 4) {
            r.columna1 = 4;
            r.columna2 = g.Columnas() - 1;
        }
    }
    return r;
}

int CampoDeClave(const QString &clave, int campo)
{
    // Read by hand: the balance test and the order read fields of every line's key, and
    // searching and converting through QString cost more than the rest of either.
    const char16_t *p = reinterpret_cast<const char16_t *>(clave.utf16());
    const char16_t *const fin = p + clave.size();
    for (int i = 0; i < campo; ++i) {
        p = std::find(p, fin, u'|');
        if (p == fin)
            return 0;
        ++p;
    }
    const char16_t *const hasta = std::find(p, fin, u'|');
    // A short number of plain digits, as keys are written; anything else as QString reads it.
    const bool negativo = p != hasta && *p == u'-';
    const char16_t *cifra = negativo ? p + 1 : p;
    if (cifra != hasta && hasta - cifra <= 9) {
        int valor = 0;
        for (; cifra != hasta && *cifra >= u'0' && *cifra <= u'9'; ++cifra)
            valor = valor * 10 + (*cifra - u'0');
        if (cifra == hasta)
            return negativo ? -valor : valor;
    }
    return QStringView(p, hasta).toInt();
}

void AsientosGrilla::FilaCabezalAsiento(const QString &libro)
{
    const int r = Cabezal.FilaCabezal;
    m_g.FijarDato(r, 0, Cabezal.AsiID);
    m_g.FijarDato(r, 1, QVariant());
    m_g.FijarDato(r, 2, Cabezal.AsiFechaAsiento);
    m_g.FijarDato(r, 3, Cabezal.AsiEstado);
    m_g.FijarDato(r, 4, Cabezal.AsiFechaModificado);
    FijarLibroAutoriza(r, Cabezal.AsiTipo, Cabezal.AsiUsuarioVerificador);
    m_g.LimpiarTextos(r);
    // Entries of one day come together: the date is written once for all of them.
    if (Cabezal.AsiFechaAsiento != m_fechaEscrita.fecha || m_ctx.formatoFecha != m_fechaEscrita.formato
        || QLocale() != m_fechaEscrita.locale) {
        m_fechaEscrita.fecha = Cabezal.AsiFechaAsiento;
        m_fechaEscrita.formato = m_ctx.formatoFecha;
        m_fechaEscrita.locale = QLocale();
        m_fechaEscrita.texto = FormatoFechaSuite(Cabezal.AsiFechaAsiento, QTime(0, 0), m_ctx.formatoFecha);
    }
    m_g.FijarTexto(r, 1, m_fechaEscrita.texto + QString(anchoRelleno() + 5, QLatin1Char(' ')) + Cabezal.AsiLeyenda.trimmed());
    if (Cabezal.AsiTipo > 0)
        m_g.FijarTexto(r, 4, libro);
    m_g.FijarAlineacion(r, 4, Qt::AlignLeft | Qt::AlignVCenter);
    m_g.FijarFondoFila(r, ColoresGrilla::kFondoCabezal);
    if (r > m_g.FilasFijas())
        m_g.FijarBordeSuperior(r, ColoresGrilla::kBordeAsiento);
}

void AsientosGrilla::ClaveLinea(int fila, qint32 lCta, qint16 iMon, qint16 iPry, qint16 iDep, qint16 ACuOrden)
{
    char16_t clave[64];
    int largo = 0;
    for (const int campo : {int(lCta), int(iPry), int(iDep), int(iMon), int(ACuOrden)}) {
        if (largo > 0)
            clave[largo++] = u'|';
        if (campo < 0)
            clave[largo++] = u'-';
        unsigned resto = campo < 0 ? 0u - unsigned(campo) : unsigned(campo);
        char16_t cifras[10];
        int n = 0;
        do {
            cifras[n++] = char16_t(u'0' + resto % 10);
            resto /= 10;
        } while (resto > 0);
        while (n > 0)
            clave[largo++] = cifras[--n];
    }
    m_g.FijarDato(fila, 1, QString(reinterpret_cast<const QChar *>(clave), largo));
}

void AsientosGrilla::FilaLineaAsiento(int fila, const RegistroLinea &l)
{
    m_g.LimpiarTextos(fila);
    m_g.FijarDato(fila, 0, Cabezal.AsiID);
    ClaveLinea(fila, l.lCta, l.iMon, l.iPry, l.iDep, l.ACuOrden);
    m_g.FijarDato(fila, 2, l.dFechaCierre);
    m_g.FijarDato(fila, 5, QVariant());
    m_g.FijarTexto(fila, l.bEsAlDebe ? 0 : 1, l.sTextDisplay);

    // Amounts are kept as they are shown, rounded to the mask of their cell: what the grid
    // holds, what it shows and what is stored agree (100.555 U$S shown 100.56 is 100.56).
    // The rate is not stored: its cell holds it as shown, and its data the factor itself.
    auto comoSeMuestra = [this](auto valor, const QString &mascara) { return ImporteConMascara(valor, mascaraLeida(mascara)); };
    const int columnaImporte = l.bEsAlDebe ? 2 : 3;
    const QString mascaraColumna = m_g.FormatoColumna(columnaImporte);
    if (l.iMon != m_ctx.monedaContabilidad && l.iMon >= 1) {
        const Importe importeMC = comoSeMuestra(l.dImporteMC, mascaraColumna);
        const QString mascaraME = mascaraImporte(l.iMon);
        m_g.FijarNumero(fila, columnaImporte, importeMC);
        const QString mascaraTasa = m_ctx.monedas ? m_ctx.monedas->DatoMoneda(l.iMon, 5).toString() : QString();
        m_g.FijarNumero(fila, 4, comoSeMuestra(l.dTCambio, mascaraTasa), mascaraTasa);
        m_g.FijarDato(fila, 4, l.dTCambio);
        m_g.FijarNumero(fila, 5, comoSeMuestra(l.dImporte, mascaraME), mascaraME);
        if (l.dTCambio != 0)
            m_g.FijarDato(fila, 5, importeMC.aDouble() / l.dTCambio);
    } else {
        m_g.FijarNumero(fila, columnaImporte, comoSeMuestra(l.dImporte, mascaraColumna));
    }
    m_g.FijarColorTexto(fila, 1, ColoresGrilla::kHaber);
    m_g.FijarColorTexto(fila, 3, ColoresGrilla::kHaber);
}

void AsientosGrilla::FilaNuevoAsiento()
{
    const int r = m_g.Filas();
    m_g.InsertarFila(r);
    m_g.FijarTexto(r, 0, m_ctx.texto ? m_ctx.texto(1110) : QStringLiteral("Nuevo Asiento"));
}

void AsientosGrilla::ClaveEstado(int fila, qint16 estado)
{
    m_g.FijarImagen(fila, ClaveImagenEstado(estado));
}

qint16 AsientosGrilla::EstadoDeFila(int fila) const
{
    const int cabezal = FilaCabezalDe(fila);
    return cabezal < 0 ? 0 : qint16(m_g.DatoEntero(cabezal, 3));
}

qint16 AsientosGrilla::LibroDeFila(int fila) const
{
    return qint16(m_g.DatoTexto(fila, 5).section(QLatin1Char(':'), 0, 0).toInt());
}

qint16 AsientosGrilla::AutorizaDeFila(int fila) const
{
    return qint16(m_g.DatoTexto(fila, 5).section(QLatin1Char(':'), 1, 1).toInt());
}

void AsientosGrilla::FijarLibroAutoriza(int fila, qint16 tipo, qint16 autoriza)
{
    m_g.FijarDato(fila, 5, QString::number(tipo) + u':' + QString::number(autoriza));
}

void AsientosGrilla::TomarAsientoDeFila(int fila)
{
    ResetCabezal();
    const int r = FilaCabezalDe(fila);
    if (r < 0)
        return;
    Cabezal.FilaCabezal = qint16(r);
    Cabezal.AsiID = m_g.DatoEntero(r, 0);
    Cabezal.AsiFechaAsiento = m_g.Dato(r, 2).toDate();
    Cabezal.AsiEstado = qint16(m_g.DatoEntero(r, 3));
    Cabezal.AsiFechaModificado = m_g.Dato(r, 4).toDateTime();
    Cabezal.AsiTipo = LibroDeFila(r);
    Cabezal.AsiUsuarioVerificador = AutorizaDeFila(r);
    Cabezal.AsiLeyenda = LeyendaDeFila(r);
}

QString AsientosGrilla::LeyendaDeFila(int fila) const
{
    // The header text is the date, blanks, and the legend; the legend is kept trimmed.
    const QString texto = m_g.Texto(fila, 1);
    const QString fecha = FormatoFechaSuite(m_g.Dato(fila, 2).toDate(), QTime(0, 0), m_ctx.formatoFecha);
    if (!fecha.isEmpty() && texto.startsWith(fecha))
        return texto.mid(fecha.size()).trimmed();
    return texto.section(QLatin1Char(' '), 1).trimmed();
}

QString AsientosGrilla::NombreEstado(qint16 estado) const
{
    if (!m_ctx.texto)
        return {};
    if (estado < 0)
        return m_ctx.texto(1007); // typed here and not stored yet
    if (estado == EstadoAsiento::kBorrador)
        return m_ctx.texto(1005);
    if (estado == EstadoAsiento::kRegistrado)
        return m_ctx.texto(1006);
    if (estado == EstadoAsiento::kInconcluso)
        return m_ctx.texto(1008);
    return {};
}

QString AsientosGrilla::TextoAccesible(int fila) const
{
    if (fila < m_g.FilasFijas() || fila >= m_g.Filas())
        return {};
    auto texto = [this](int n) { return m_ctx.texto ? m_ctx.texto(n).trimmed() : QString(); };
    QStringList partes;
    auto agregar = [&partes](const QString &t) {
        if (!t.trimmed().isEmpty())
            partes << t.trimmed();
    };
    if (EsFilaCabezal(fila)) {
        agregar(FormatoFechaSuite(m_g.Dato(fila, 2).toDate(), QTime(0, 0), m_ctx.formatoFecha));
        agregar(LeyendaDeFila(fila));
        agregar(m_g.Texto(fila, 4));
        agregar(NombreEstado(qint16(m_g.DatoEntero(fila, 3))));
        return partes.join(QStringLiteral(", "));
    }
    if (EsFilaNuevoAsiento(fila) || m_g.DatoTexto(fila, 1).isEmpty()) {
        for (int c = 0; c < m_g.Columnas(); ++c)
            agregar(m_g.Texto(fila, c));
        return partes.join(QStringLiteral(", "));
    }
    // A line: its side by the column its amount is in, then its account and amounts.
    const bool alDebe = !m_g.Valor(fila, 2).esCero() || m_g.Valor(fila, 3).esCero();
    const qint16 moneda = qint16(CampoDeClave(m_g.DatoTexto(fila, 1), 3));
    auto simbolo = [this](qint16 m) {
        return m_ctx.monedas ? m_ctx.monedas->DatoMoneda(m, 2).toString().trimmed() : QString();
    };
    const QString lado = texto(alDebe ? 1069 : 1070);
    if (EsFilaDiferencia(fila))
        agregar(texto(1180) + u' ' + lado);
    else
        agregar(lado + u' ' + m_g.Texto(fila, alDebe ? 0 : 1));
    agregar(m_g.Texto(fila, alDebe ? 2 : 3) + u' ' + simbolo(m_ctx.monedaContabilidad));
    if (!EsFilaDiferencia(fila) && moneda >= 1 && moneda != m_ctx.monedaContabilidad) {
        agregar(texto(1063) + u' ' + m_g.Texto(fila, 4));
        agregar(m_g.Texto(fila, 5) + u' ' + simbolo(moneda));
    }
    return partes.join(QStringLiteral(", "));
}

RegistroLinea AsientosGrilla::LineaDeFila(int fila) const
{
    RegistroLinea l;
    const QString clave = m_g.DatoTexto(fila, 1);
    if (clave.isEmpty())
        return l;
    l.lCta = CampoDeClave(clave, 0);
    l.iPry = qint16(CampoDeClave(clave, 1));
    l.iDep = qint16(CampoDeClave(clave, 2));
    l.iMon = qint16(CampoDeClave(clave, 3));
    l.ACuOrden = qint16(CampoDeClave(clave, 4));
    l.dFechaCierre = m_g.DatoTexto(fila, 2);
    l.bEsAlDebe = tieneTexto(fila, 2) || (!tieneTexto(fila, 3) && !m_g.Texto(fila, 0).isEmpty());
    l.sTextDisplay = m_g.Texto(fila, l.bEsAlDebe ? 0 : 1);
    const Importe mc = m_g.Valor(fila, l.bEsAlDebe ? 2 : 3);
    const bool extranjera = l.iMon != m_ctx.monedaContabilidad && l.iMon >= 1;
    l.dImporteMC = mc;
    l.dImporte = extranjera ? m_g.Valor(fila, 5) : mc;
    l.dTCambio = extranjera ? TasaDeFila(fila) : (mc.esCero() ? 0 : 1);
    return l;
}

double AsientosGrilla::TasaDeFila(int fila) const
{
    // A grid laid out before the data kept the factor has only the rate as shown.
    const QVariant factor = m_g.Dato(fila, 4);
    return factor.isValid() ? factor.toDouble() : m_g.Valor(fila, 4).aDouble();
}

QVector<LineaDatos> AsientosGrilla::LineasParaGrabar(QVector<qint16> *monedas) const
{
    QVector<LineaDatos> lineas;
    const int cabezal = Cabezal.FilaCabezal;
    if (cabezal < 0)
        return lineas;
    for (int r = cabezal + 1; r <= UltimaFilaAsiento(cabezal); ++r) {
        if (EsFilaDiferencia(r) || m_g.DatoTexto(r, 1).isEmpty())
            continue;
        const RegistroLinea l = LineaDeFila(r);
        if (l.lCta <= 0)
            continue;
        LineaDatos d;
        d.Cuenta = l.lCta;
        d.Proyecto = l.iPry;
        d.Departamento = l.iDep;
        d.AlDebe = l.bEsAlDebe;
        d.Importe = l.dImporte;
        d.ImporteMC = l.dImporteMC;
        d.Tasa = l.dTCambio;
        d.Orden = l.ACuOrden;
        lineas.append(d);
        if (monedas)
            monedas->append(l.iMon);
    }
    return lineas;
}

void AsientosGrilla::ActualizarCabezalFila(int filaCabezal, const QDateTime &sello, qint16 estado)
{
    // The entry's rows are found by the id they carry, so its end is found before the id
    // changes (a new entry's rows carry 0 until its first write).
    const int ultima = UltimaFilaAsiento(filaCabezal);
    for (int r = filaCabezal; r <= ultima; ++r)
        m_g.FijarDato(r, 0, Cabezal.AsiID);
    m_g.FijarDato(filaCabezal, 3, estado);
    m_g.FijarDato(filaCabezal, 4, sello);
    ClaveEstado(filaCabezal, estado);
}

int AsientosGrilla::FilaDeAsiento(qint32 asiID) const
{
    for (int r = m_g.FilasFijas(); r < m_g.Filas(); ++r)
        if (EsFilaCabezal(r) && IdDeFila(r) == asiID)
            return r;
    return -1;
}

void AsientosGrilla::QuitarAsientoDeGrilla(qint32 asiID)
{
    std::vector<bool> quitar(size_t(m_g.Filas()), false);
    bool alguna = false;
    for (int r = m_g.FilasFijas(); r < m_g.Filas(); ++r) {
        if (EsFilaCabezal(r) && IdDeFila(r) == asiID) {
            for (int k = r; k <= UltimaFilaAsiento(r); ++k)
                quitar[size_t(k)] = true;
            alguna = true;
        }
    }
    if (alguna)
        m_g.QuitarFilasMarcadas(quitar);
}

void AsientosGrilla::QuitarAsientoDeGrilla()
{
    const int r = Cabezal.FilaCabezal;
    if (r < m_g.FilasFijas() || r >= m_g.Filas())
        return;
    m_g.QuitarFilas(r, UltimaFilaAsiento(r) - r + 1);
    ResetCabezal();
}

namespace {

// Column positions of the loading query, looked up once per fill.
struct Columnas
{
    int AsiID, AsiEstado, AsiFechaAsiento, AsiFechaModificado, AsiLeyenda, AsiTipo, LibNombre,
        AsiUsuarioVerificador, AcuHaber, CueMoneda, CueFechaCerrada, CueCodigo, CueNombre, ACuDebe,
        ACuImporteMC, ACuOrden, ACuCuenta, ACuProyecto, ACuDepartamento;

    explicit Columnas(const Recordset &rs)
    {
        auto i = [&](const char *n) {
            const int k = rs.IndiceCampo(QString::fromLatin1(n));
            if (k < 0)
                throw ErrorBaseDatos(QStringLiteral("No se encontró el elemento en esta colección (%1).").arg(QLatin1String(n)), 3265);
            return k;
        };
        AsiID = i("AsiID");
        AsiEstado = i("AsiEstado");
        AsiFechaAsiento = i("AsiFechaAsiento");
        AsiFechaModificado = i("AsiFechaModificado");
        AsiLeyenda = i("AsiLeyenda");
        AsiTipo = i("AsiTipo");
        LibNombre = i("LibNombre");
        AsiUsuarioVerificador = i("AsiUsuarioVerificador");
        AcuHaber = i("AcuHaber");
        CueMoneda = i("CueMoneda");
        CueFechaCerrada = i("CueFechaCerrada");
        CueCodigo = i("CueCodigo");
        CueNombre = i("CueNombre");
        ACuDebe = i("ACuDebe");
        ACuImporteMC = i("ACuImporteMC");
        ACuOrden = i("ACuOrden");
        ACuCuenta = i("ACuCuenta");
        ACuProyecto = i("ACuProyecto");
        ACuDepartamento = i("ACuDepartamento");
    }
};

} // namespace

int AsientosGrilla::LlenarParte(Recordset &rs, int asientos)
{
    int r = m_g.Filas();
    bool hayAsiento = false;
    int leidos = 0;
    Cabezal.AsiID = 0;

    QHash<qint32, std::pair<QString, QString>> cuentas;
    // Lines of one account on one side with one debit amount come back from the query in no
    // defined order (engines differ): within such a run they are put in their order of entry.
    struct ClaveEmpate
    {
        qint32 asiento = 0;
        qint32 cuenta = 0;
        bool debe = false;
        Importe importe;
        bool operator==(const ClaveEmpate &o) const = default;
    } empate;
    QVector<qint16> ordenesEmpatadas;
    if (!rs.Fin()) {
        const Columnas c(rs);
        for (; !rs.Fin(); rs.MoverSiguiente()) {
            const qint32 id = int(rs.EnteroEn(c.AsiID));
            if (!hayAsiento || id != Cabezal.AsiID) {
                // The first row of an entry past the limit stays unread, for the next part.
                if (asientos > 0 && leidos == asientos)
                    break;
                ++leidos;
                if (hayAsiento && FormatoEntrada())
                    ++r;
                m_g.InsertarFila(r);
                const bool sinLibro = rs.NuloEn(c.AsiTipo) || rs.NuloEn(c.LibNombre);
                Cabezal.AsiEstado = qint16(rs.EnteroEn(c.AsiEstado));
                Cabezal.AsiFechaAsiento = FechaDeValor(rs.Campo(c.AsiFechaAsiento));
                Cabezal.AsiFechaModificado = rs.FechaHoraEn(c.AsiFechaModificado);
                Cabezal.AsiID = id;
                Cabezal.AsiLeyenda = rs.Campo(c.AsiLeyenda).toString().trimmed();
                Cabezal.AsiTipo = qint16(rs.EnteroEn(c.AsiTipo));
                Cabezal.AsiUsuarioVerificador = qint16(rs.EnteroEn(c.AsiUsuarioVerificador));
                Cabezal.FilaCabezal = r;
                const QString nombreLibro = sinLibro ? QString() : rs.Campo(c.LibNombre).toString().trimmed();
                FilaCabezalAsiento(nombreLibro);
                ClaveEstado(r, Cabezal.AsiEstado);
                hayAsiento = true;
                ++r;
            }

            RegistroLinea l;
            l.bEsAlDebe = rs.NuloEn(c.AcuHaber);
            l.lCta = int(rs.EnteroEn(c.ACuCuenta));
            l.iPry = qint16(rs.EnteroEn(c.ACuProyecto));
            l.iDep = qint16(rs.EnteroEn(c.ACuDepartamento));
            l.iMon = qint16(rs.EnteroEn(c.CueMoneda));
            // An account's texts are the same on every line: make them once per fill.
            auto cuenta = cuentas.find(l.lCta);
            if (cuenta == cuentas.end()) {
                const QVariant cierre = rs.Campo(c.CueFechaCerrada);
                cuenta = cuentas.insert(l.lCta, {TextoCuenta(rs.Campo(c.CueCodigo).toString(), rs.Campo(c.CueNombre).toString(),
                                                             m_ctx.mostrarCodigoCta),
                                                 cierre.isNull() ? QString() : FechaDeValor(cierre).toString(Qt::ISODate)});
            }
            l.sTextDisplay = cuenta->first;
            l.dFechaCierre = cuenta->second;
            l.ACuOrden = qint16(rs.EnteroEn(c.ACuOrden));
            l.dImporteMC = Importe::DesdeDouble(rs.NumeroEn(c.ACuImporteMC));
            if (l.iMon != m_ctx.monedaContabilidad && l.iMon != 0)
                l.dImporte = Importe::DesdeDouble(rs.NumeroEn(l.bEsAlDebe ? c.ACuDebe : c.AcuHaber));
            else
                l.dImporte = l.dImporteMC;
            l.dTCambio = l.dImporte.esCero() ? 0 : l.dImporteMC.aDouble() / l.dImporte.aDouble();
            // One account has one currency: its debit amount is the line's own amount.
            const ClaveEmpate clave{id, l.lCta, l.bEsAlDebe, l.bEsAlDebe ? l.dImporte : Importe()};
            if (!(clave == empate))
                ordenesEmpatadas.clear();
            empate = clave;
            qsizetype k = ordenesEmpatadas.size();
            while (k > 0 && ordenesEmpatadas[k - 1] > l.ACuOrden)
                --k;
            const int fila = r - int(ordenesEmpatadas.size() - k);
            ordenesEmpatadas.insert(k, l.ACuOrden);
            m_g.InsertarFila(fila);
            FilaLineaAsiento(fila, l);
            ++r;
        }
    }
    if (hayAsiento)
        FormatoEntrada();
    return leidos;
}

int AsientosGrilla::LlenarGrilla(Conexion &conexion, const QString &sql, int fila)
{
    const int destino = fila <= 0 ? m_g.Filas() : std::min(fila, m_g.Filas());
    // Rows are written at the end and moved into place in one step afterwards, so that a
    // fill in the middle of a long grid does not shift the rows below once per row.
    const int inicio = m_g.Filas();
    auto rs = conexion.Abrir(sql);
    LlenarParte(*rs, 0);
    rs->Cerrar();

    const int agregadas = m_g.Filas() - inicio;
    if (agregadas > 0 && destino < inicio) {
        m_g.MoverFilas(inicio, agregadas, destino);
        // The entry now right under the caption row needs no separating line; the one that
        // was there before now does.
        if (destino == m_g.FilasFijas())
            m_g.FijarBordeSuperior(destino, 0);
        if (EsFilaCabezal(destino + agregadas))
            m_g.FijarBordeSuperior(destino + agregadas, ColoresGrilla::kBordeAsiento);
    }

    const int ultima = m_g.Filas() - 1;
    if (m_g.Filas() == m_g.FilasFijas() || m_g.DatoEntero(ultima, 0) > 0)
        FilaNuevoAsiento();
    ResetCabezal();

    if (m_ctx.anchoClienteTwips > 0) {
        int resto = m_ctx.anchoClienteTwips - 300;
        for (int col = 1; col < m_g.Columnas(); ++col)
            resto -= m_g.ColumnaOculta(col) ? 0 : m_g.AnchoColumna(col);
        if (resto >= 0)
            m_g.FijarAnchoColumna(0, resto);
    }
    listo = true;
    return agregadas > 0 ? (destino < inicio ? destino : inicio) : -1;
}
