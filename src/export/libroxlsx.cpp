#include "libroxlsx.h"

#include <charconv>
#include <cmath>

namespace {

constexpr qsizetype kBloque = 1 << 19;
// Serial day 0 of a spreadsheet's dates: days after February 1900 count from here. Its count
// holds a 29 February 1900 that never was, so the days before March 1900 count from a day later.
const QDate kEpoca(1899, 12, 30);
const QDate kMarzo1900(1900, 3, 1);
// A cell holds at most this many characters, a sheet this many rows.
constexpr qsizetype kMaximoTexto = 32767;
constexpr qint64 kMaximoFilas = 1048576;

const char kCabeceraXml[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
const char kEspacioPrincipal[] = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
const char kEspacioRelaciones[] = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

const char kTiposContenido[] =
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
    "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
    "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
    "<Override PartName=\"/xl/workbook.xml\" "
    "ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml\"/>"
    "<Override PartName=\"/xl/worksheets/sheet1.xml\" "
    "ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml\"/>"
    "<Override PartName=\"/xl/styles.xml\" "
    "ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml\"/>"
    "</Types>";

const char kRelacionesPaquete[] =
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
    "<Relationship Id=\"rId1\" "
    "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument\" "
    "Target=\"xl/workbook.xml\"/></Relationships>";

const char kRelacionesLibro[] =
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
    "<Relationship Id=\"rId1\" "
    "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet\" "
    "Target=\"worksheets/sheet1.xml\"/>"
    "<Relationship Id=\"rId2\" "
    "Type=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles\" "
    "Target=\"styles.xml\"/></Relationships>";

QByteArray Letras(int columna)
{
    QByteArray letras;
    for (int n = columna + 1; n > 0; n = (n - 1) / 26)
        letras.prepend(char('A' + (n - 1) % 26));
    return letras;
}

QByteArray Hex(quint32 rgb)
{
    return QByteArray::number(0xff000000u | rgb, 16).toUpper();
}

// A width in characters as the sheet stores it: the pixels of that many digits of the
// default font, 7 each, with 5 of padding, in 256ths of a digit.
double AnchoGuardado(double caracteres)
{
    if (caracteres <= 0)
        return 0;
    const double pixeles = std::floor(caracteres * 7 + 0.5) + 5;
    return std::floor(pixeles / 7 * 256) / 256;
}

// Text for an XML attribute or element, escaped.
QByteArray Escapado(const QString &texto)
{
    return texto.toHtmlEscaped().toUtf8();
}

} // namespace

LibroXlsx::LibroXlsx(QIODevice &salida)
    : m_zip(salida)
{
    m_xml.resize(kBloque + (1 << 16));
    m_formatos.push_back({0, 0, 0, 0}); // the default cell
}

bool LibroXlsx::Empezar(const QString &hoja, int filasFijas, const std::vector<double> &anchos)
{
    const QByteArray libro = QByteArray(kCabeceraXml) + "<workbook xmlns=\"" + kEspacioPrincipal + "\" xmlns:r=\""
                           + kEspacioRelaciones + "\"><sheets><sheet name=\"" + Escapado(hoja.left(31))
                           + "\" sheetId=\"1\" r:id=\"rId1\"/></sheets></workbook>";
    bool bien = m_zip.Entrada("[Content_Types].xml") && m_zip.Escribir(QByteArray(kCabeceraXml) + kTiposContenido)
             && m_zip.Entrada("_rels/.rels") && m_zip.Escribir(QByteArray(kCabeceraXml) + kRelacionesPaquete)
             && m_zip.Entrada("xl/workbook.xml") && m_zip.Escribir(libro)
             && m_zip.Entrada("xl/_rels/workbook.xml.rels") && m_zip.Escribir(QByteArray(kCabeceraXml) + kRelacionesLibro)
             && m_zip.Entrada("xl/worksheets/sheet1.xml");
    m_letras.clear();
    for (size_t c = 0; c < std::max<size_t>(anchos.size(), 26); ++c)
        m_letras.push_back(Letras(int(c)));

    QByteArray x = QByteArray(kCabeceraXml) + "<worksheet xmlns=\"" + kEspacioPrincipal + "\" xmlns:r=\"" + kEspacioRelaciones
                 + "\"><sheetViews><sheetView tabSelected=\"1\" workbookViewId=\"0\">";
    if (filasFijas > 0) {
        const QByteArray primera = "A" + QByteArray::number(filasFijas + 1);
        x += "<pane ySplit=\"" + QByteArray::number(filasFijas) + "\" topLeftCell=\"" + primera
               + "\" activePane=\"bottomLeft\" state=\"frozen\"/><selection pane=\"bottomLeft\" activeCell=\"" + primera
               + "\" sqref=\"" + primera + "\"/>";
    }
    x += "</sheetView></sheetViews><sheetFormatPr defaultRowHeight=\"15\"/>";
    if (!anchos.empty()) {
        x += "<cols>";
        for (size_t c = 0; c < anchos.size(); ++c) {
            const QByteArray n = QByteArray::number(qulonglong(c + 1));
            x += "<col min=\"" + n + "\" max=\"" + n + "\" width=\"" + QByteArray::number(AnchoGuardado(anchos[c]), 'g', 17)
                   + "\" customWidth=\"1\"/>";
        }
        x += "</cols>";
    }
    poner(x + "<sheetData>");
    return bien;
}

int LibroXlsx::Estilo(const QString &numero, quint32 texto, quint32 fondo, bool fija)
{
    const auto clave = std::make_tuple(numero, texto, fondo, fija);
    if (const auto it = m_estilos.find(clave); it != m_estilos.end())
        return it->second;
    Formato f{0, 0, 0, fija ? 1 : 0};
    if (!numero.isEmpty())
        f.numero = m_numeros.try_emplace(numero, 164 + int(m_numeros.size())).first->second;
    if (texto != kSinColor || fija)
        f.fuente = m_fuentes.try_emplace({texto, fija}, 1 + int(m_fuentes.size())).first->second;
    if (fondo != kSinColor)
        f.relleno = m_rellenos.try_emplace(fondo, 2 + int(m_rellenos.size())).first->second;
    m_formatos.push_back(f);
    const int indice = int(m_formatos.size()) - 1;
    m_estilos.emplace(clave, indice);
    return indice;
}

char *LibroXlsx::reservar(qsizetype bytes)
{
    if (m_usados + bytes > m_xml.size())
        m_xml.resize(std::max(m_xml.size() * 2, m_usados + bytes));
    return m_xml.data() + m_usados;
}

void LibroXlsx::poner(const QByteArray &bytes)
{
    std::memcpy(reservar(bytes.size()), bytes.constData(), size_t(bytes.size()));
    m_usados += bytes.size();
}

char *LibroXlsx::ponerEntero(char *p, qint64 n)
{
    return std::to_chars(p, p + 24, n).ptr;
}

namespace {

template<size_t N>
char *Copiar(char *p, const char (&literal)[N])
{
    std::memcpy(p, literal, N - 1);
    return p + N - 1;
}

} // namespace

// Opens a cell with room for resto more bytes after its opening tag.
void LibroXlsx::abrirCelda(int columna, int estilo, const char *tipo, qsizetype resto)
{
    while (size_t(columna) >= m_letras.size())
        m_letras.push_back(Letras(int(m_letras.size())));
    const QByteArray &letras = m_letras[size_t(columna)];
    char *p = reservar(128 + letras.size() + resto);
    if (!m_filaAbierta) {
        p = Copiar(p, "<row r=\"");
        p = ponerEntero(p, m_fila);
        p = Copiar(p, "\">");
        m_filaAbierta = true;
    }
    p = Copiar(p, "<c r=\"");
    std::memcpy(p, letras.constData(), size_t(letras.size()));
    p = ponerEntero(p + letras.size(), m_fila);
    *p++ = '"';
    if (estilo > 0) {
        p = Copiar(p, " s=\"");
        p = ponerEntero(p, estilo);
        *p++ = '"';
    }
    if (tipo) {
        p = Copiar(p, " t=\"");
        const size_t largo = std::strlen(tipo);
        std::memcpy(p, tipo, largo);
        p += largo;
        *p++ = '"';
    }
    *p++ = '>';
    m_usados = p - m_xml.data();
}

void LibroXlsx::Numero(int columna, double valor, int estilo)
{
    if (!std::isfinite(valor)) {
        Vacia(columna, estilo);
        return;
    }
    abrirCelda(columna, estilo, nullptr, 48);
    char *p = Copiar(m_xml.data() + m_usados, "<v>");
    p = std::to_chars(p, p + 32, valor).ptr;
    p = Copiar(p, "</v></c>");
    m_usados = p - m_xml.data();
}

void LibroXlsx::Fecha(int columna, const QDate &fecha, int estilo)
{
    if (!fecha.isValid()) {
        Vacia(columna, estilo);
        return;
    }
    abrirCelda(columna, estilo, nullptr, 40);
    char *p = Copiar(m_xml.data() + m_usados, "<v>");
    p = ponerEntero(p, kEpoca.daysTo(fecha) - (fecha < kMarzo1900 ? 1 : 0));
    p = Copiar(p, "</v></c>");
    m_usados = p - m_xml.data();
}

void LibroXlsx::Texto(int columna, QStringView texto, int estilo)
{
    // Cut where the cell ends, never between the two halves of a character.
    if (texto.size() > kMaximoTexto)
        texto = texto.left(texto[kMaximoTexto - 1].isHighSurrogate() ? kMaximoTexto - 1 : kMaximoTexto);
    // At most seven bytes for each character: "_x000D_".
    abrirCelda(columna, estilo, "inlineStr", 64 + 7 * texto.size());
    const auto blanco = [](QChar c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; };
    char *p = m_xml.data() + m_usados;
    if (!texto.isEmpty() && (blanco(texto.front()) || blanco(texto.back())))
        p = Copiar(p, "<is><t xml:space=\"preserve\">");
    else
        p = Copiar(p, "<is><t>");
    p = ponerEscapado(p, texto);
    p = Copiar(p, "</t></is></c>");
    m_usados = p - m_xml.data();
}

void LibroXlsx::Vacia(int columna, int estilo)
{
    abrirCelda(columna, estilo, nullptr, 2);
    m_xml[m_usados - 1] = '/';
    m_xml[m_usados++] = '>';
}

// UTF-8, with the characters XML reserves escaped. A carriage return and the control
// characters XML does not admit go as the sheet's own escape "_xHHHH_", and an underscore that
// would start such an escape is escaped itself, so each text reads back as it was.
char *LibroXlsx::ponerEscapado(char *p, QStringView texto)
{
    static const char kHex[] = "0123456789ABCDEF";
    const auto escape = [&p](char16_t c) {
        p = Copiar(p, "_x00");
        *p++ = kHex[c >> 4];
        *p++ = kHex[c & 0xf];
        *p++ = '_';
    };
    const auto hex = [](QChar q) {
        const char16_t c = q.unicode();
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    };
    const qsizetype n = texto.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = texto[i].unicode();
        if (c < 0x80) {
            switch (c) {
            case u'&':
                p = Copiar(p, "&amp;");
                break;
            case u'<':
                p = Copiar(p, "&lt;");
                break;
            case u'>':
                p = Copiar(p, "&gt;");
                break;
            case u'_':
                if (i + 6 < n && texto[i + 1] == u'x' && hex(texto[i + 2]) && hex(texto[i + 3]) && hex(texto[i + 4])
                    && hex(texto[i + 5]) && texto[i + 6] == u'_')
                    escape(c);
                else
                    *p++ = '_';
                break;
            default:
                if (c >= 0x20 || c == u'\t' || c == u'\n')
                    *p++ = char(c);
                else
                    escape(c);
            }
        } else if (c < 0x800) {
            *p++ = char(0xc0 | (c >> 6));
            *p++ = char(0x80 | (c & 0x3f));
        } else if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(texto[i + 1].unicode())) {
            const char32_t u = QChar::surrogateToUcs4(c, texto[++i].unicode());
            *p++ = char(0xf0 | (u >> 18));
            *p++ = char(0x80 | ((u >> 12) & 0x3f));
            *p++ = char(0x80 | ((u >> 6) & 0x3f));
            *p++ = char(0x80 | (u & 0x3f));
        } else {
            const char16_t v = QChar::isSurrogate(c) || c == 0xfffe || c == 0xffff ? char16_t(0xfffd) : c;
            *p++ = char(0xe0 | (v >> 12));
            *p++ = char(0x80 | ((v >> 6) & 0x3f));
            *p++ = char(0x80 | (v & 0x3f));
        }
    }
    return p;
}

bool LibroXlsx::volcar()
{
    const bool bien = m_zip.Escribir(m_xml.constData(), m_usados);
    m_usados = 0;
    return bien;
}

bool LibroXlsx::TerminarFila()
{
    if (m_fila > kMaximoFilas) {
        m_demasiadasFilas = true;
        return false;
    }
    if (m_filaAbierta)
        poner("</row>");
    m_filaAbierta = false;
    ++m_fila;
    return m_usados < kBloque || volcar();
}

QByteArray LibroXlsx::estilos() const
{
    QByteArray x = QByteArray(kCabeceraXml) + "<styleSheet xmlns=\"" + kEspacioPrincipal + "\">";
    if (!m_numeros.empty()) {
        x += "<numFmts count=\"" + QByteArray::number(qulonglong(m_numeros.size())) + "\">";
        for (const auto &[codigo, id] : m_numeros)
            x += "<numFmt numFmtId=\"" + QByteArray::number(id) + "\" formatCode=\"" + Escapado(codigo) + "\"/>";
        x += "</numFmts>";
    }
    std::vector<std::pair<quint32, bool>> fuentes(m_fuentes.size());
    for (const auto &[clave, id] : m_fuentes)
        fuentes[size_t(id - 1)] = clave;
    x += "<fonts count=\"" + QByteArray::number(qulonglong(fuentes.size() + 1))
       + "\"><font><sz val=\"11\"/><color theme=\"1\"/><name val=\"Calibri\"/><family val=\"2\"/><scheme val=\"minor\"/></font>";
    for (const auto &[color, negrita] : fuentes) {
        x += negrita ? "<font><b/><sz val=\"11\"/>" : "<font><sz val=\"11\"/>";
        x += color == kSinColor ? QByteArray("<color theme=\"1\"/>") : "<color rgb=\"" + Hex(color) + "\"/>";
        x += "<name val=\"Calibri\"/><family val=\"2\"/><scheme val=\"minor\"/></font>";
    }
    std::vector<quint32> rellenos(m_rellenos.size());
    for (const auto &[color, id] : m_rellenos)
        rellenos[size_t(id - 2)] = color;
    x += "</fonts><fills count=\"" + QByteArray::number(qulonglong(rellenos.size() + 2))
       + "\"><fill><patternFill patternType=\"none\"/></fill><fill><patternFill patternType=\"gray125\"/></fill>";
    for (const quint32 color : rellenos)
        x += "<fill><patternFill patternType=\"solid\"><fgColor rgb=\"" + Hex(color) + "\"/><bgColor indexed=\"64\"/></patternFill></fill>";
    x += "</fills><borders count=\"2\"><border><left/><right/><top/><bottom/><diagonal/></border>"
         "<border><left/><right/><top/><bottom style=\"thin\"><color auto=\"1\"/></bottom><diagonal/></border></borders>"
         "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
         "<cellXfs count=\"" + QByteArray::number(qulonglong(m_formatos.size())) + "\">";
    for (const Formato &f : m_formatos) {
        x += "<xf numFmtId=\"" + QByteArray::number(f.numero) + "\" fontId=\"" + QByteArray::number(f.fuente) + "\" fillId=\""
           + QByteArray::number(f.relleno) + "\" borderId=\"" + QByteArray::number(f.borde) + "\" xfId=\"0\"";
        if (f.numero)
            x += " applyNumberFormat=\"1\"";
        if (f.fuente)
            x += " applyFont=\"1\"";
        if (f.relleno)
            x += " applyFill=\"1\"";
        if (f.borde)
            x += " applyBorder=\"1\"";
        x += "/>";
    }
    x += "</cellXfs><cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles></styleSheet>";
    return x;
}

bool LibroXlsx::Terminar()
{
    if (m_filaAbierta)
        TerminarFila();
    poner("</sheetData><pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" header=\"0.3\" footer=\"0.3\"/>"
          "</worksheet>");
    return volcar() && m_zip.Entrada("xl/styles.xml") && m_zip.Escribir(estilos()) && m_zip.Terminar();
}
