#include "grilla.h"

#include "currency/mascara.h"

#include <QDateTime>

#include <algorithm>
#include <bit>
#include <stdexcept>

Grilla::Grilla(int columnas, int filasFijas)
    : m_columnas(columnas)
    , m_filasFijas(filasFijas)
    , m_filas(size_t(filasFijas))
    , m_celdas(size_t(filasFijas) * size_t(columnas))
    , m_anchos(size_t(columnas), 1440)
    , m_ocultas(size_t(columnas), false)
    , m_alineaciones(size_t(columnas), Qt::AlignLeft | Qt::AlignVCenter)
    , m_formatos(size_t(columnas))
{
}

void Grilla::cambio(int fila1, int fila2)
{
    if (avisar())
        m_observador->CeldasCambiadas(fila1, fila2);
    else
        m_sucia = true;
}

void Grilla::FijarRedibujar(bool si)
{
    m_redibujar = si;
    if (si && m_sucia) {
        m_sucia = false;
        if (m_observador)
            m_observador->Reinicio();
    }
}

quint32 Grilla::indiceTexto(const QString &texto)
{
    if (texto.isNull())
        return 0;
    const auto it = m_indiceTextos.constFind(texto);
    if (it != m_indiceTextos.cend())
        return *it;
    // A cell has room for 16 million texts; a grid holds at most a few per row.
    if (m_textos.size() >= CeldaGrilla::kMaximoTextos)
        compactar();
    if (m_textos.size() >= CeldaGrilla::kMaximoTextos)
        throw std::length_error("too many texts in one grid");
    const auto indice = quint32(m_textos.size());
    m_textos.push_back(texto);
    m_indiceTextos.insert(texto, indice);
    return indice;
}

void Grilla::soltar(const CeldaGrilla &c)
{
    if (c.texto != 0)
        ++m_soltados;
    soltarDato(c);
}

void Grilla::soltarDato(const CeldaGrilla &c)
{
    if ((c.tipoDato == CeldaGrilla::TipoDato::Texto && c.carga != 0) || c.tipoDato == CeldaGrilla::TipoDato::Otro)
        ++m_soltados;
}

void Grilla::fijarIndiceTexto(CeldaGrilla &c, quint32 indice)
{
    if (c.texto != 0 && c.texto != indice)
        ++m_soltados;
    c.texto = indice;
}

void Grilla::soltarFilas(int fila, int cantidad)
{
    const auto inicio = m_celdas.begin() + std::ptrdiff_t(indiceCelda(fila, 0));
    std::for_each(inicio, inicio + std::ptrdiff_t(cantidad) * m_columnas, [this](const CeldaGrilla &c) { soltar(c); });
}

// Marks the texts and data some cell still names, keeps only those, and renumbers the cells.
// Texts and data stay until then: a row copied or moved keeps naming the same entries.
void Grilla::compactar()
{
    using Tipo = CeldaGrilla::TipoDato;
    std::vector<quint32> nuevoTexto(m_textos.size(), 0);
    std::vector<quint32> nuevoOtro(m_otros.size(), 0);
    for (const CeldaGrilla &c : m_celdas) {
        nuevoTexto[c.texto] = 1;
        if (c.tipoDato == Tipo::Texto)
            nuevoTexto[size_t(c.carga)] = 1;
        else if (c.tipoDato == Tipo::Otro)
            nuevoOtro[size_t(c.carga)] = 1;
    }
    std::vector<QString> textos{QString()};
    for (size_t i = 1; i < m_textos.size(); ++i) {
        if (nuevoTexto[i]) {
            nuevoTexto[i] = quint32(textos.size());
            textos.push_back(std::move(m_textos[i]));
        }
    }
    std::vector<QVariant> otros;
    for (size_t i = 0; i < m_otros.size(); ++i) {
        if (nuevoOtro[i]) {
            nuevoOtro[i] = quint32(otros.size());
            otros.push_back(std::move(m_otros[i]));
        }
    }
    nuevoTexto[0] = 0;
    for (CeldaGrilla &c : m_celdas) {
        c.texto = nuevoTexto[c.texto];
        if (c.tipoDato == Tipo::Texto)
            c.carga = nuevoTexto[size_t(c.carga)];
        else if (c.tipoDato == Tipo::Otro)
            c.carga = nuevoOtro[size_t(c.carga)];
    }
    m_textos = std::move(textos);
    m_otros = std::move(otros);
    m_indiceTextos.clear();
    m_indiceTextos.reserve(qsizetype(m_textos.size()));
    for (size_t i = 1; i < m_textos.size(); ++i)
        m_indiceTextos.insert(m_textos[i], quint32(i));
    m_soltados = 0;
}

void Grilla::quizaCompactar()
{
    // Each compaction walks every cell, so it waits until a share of them has let go of
    // something; an emptied grid frees its texts at once.
    if (m_soltados >= std::max<size_t>(4096, m_celdas.size() / 4) || (m_soltados > 0 && Filas() == m_filasFijas))
        compactar();
}

void Grilla::FijarFilas(int n)
{
    n = std::max(n, m_filasFijas);
    if (n < Filas())
        QuitarFilas(n, Filas() - n);
    else if (n > Filas())
        InsertarFilas(Filas(), n - Filas());
}

void Grilla::InsertarFilas(int fila, int cantidad)
{
    if (cantidad <= 0)
        return;
    fila = std::clamp(fila, m_filasFijas, Filas());
    const bool aviso = avisar();
    if (aviso)
        m_observador->AntesDeInsertar(fila, cantidad);
    m_filas.insert(m_filas.begin() + fila, size_t(cantidad), FilaGrilla());
    m_celdas.insert(m_celdas.begin() + std::ptrdiff_t(indiceCelda(fila, 0)), size_t(cantidad) * size_t(m_columnas), CeldaGrilla());
    if (aviso)
        m_observador->DespuesDeInsertar();
    else
        m_sucia = true;
}

void Grilla::QuitarFilas(int fila, int cantidad)
{
    cantidad = std::min(cantidad, Filas() - fila);
    if (cantidad <= 0 || fila < m_filasFijas)
        return;
    const bool aviso = avisar();
    if (aviso)
        m_observador->AntesDeQuitar(fila, cantidad);
    soltarFilas(fila, cantidad);
    m_filas.erase(m_filas.begin() + fila, m_filas.begin() + fila + cantidad);
    const auto celdas = m_celdas.begin() + std::ptrdiff_t(indiceCelda(fila, 0));
    m_celdas.erase(celdas, celdas + std::ptrdiff_t(cantidad) * m_columnas);
    quizaCompactar();
    if (aviso)
        m_observador->DespuesDeQuitar();
    else
        m_sucia = true;
}

void Grilla::MoverFilas(int desde, int cantidad, int antes)
{
    if (cantidad <= 0 || (antes >= desde && antes <= desde + cantidad))
        return;
    const bool aviso = avisar();
    if (aviso)
        m_observador->AntesDeMover(desde, cantidad, antes);
    // The same rotation on the rows and on their cells.
    auto rotar = [&](auto inicio, std::ptrdiff_t ancho) {
        if (antes < desde)
            std::rotate(inicio + antes * ancho, inicio + desde * ancho, inicio + (desde + cantidad) * ancho);
        else
            std::rotate(inicio + desde * ancho, inicio + (desde + cantidad) * ancho, inicio + antes * ancho);
    };
    rotar(m_filas.begin(), 1);
    rotar(m_celdas.begin(), m_columnas);
    if (aviso)
        m_observador->DespuesDeMover();
    else
        m_sucia = true;
}

void Grilla::IntercambiarFilas(int a, int b)
{
    if (a == b)
        return;
    std::swap(m_filas[size_t(a)], m_filas[size_t(b)]);
    const auto celdas = m_celdas.begin();
    std::swap_ranges(celdas + std::ptrdiff_t(indiceCelda(a, 0)), celdas + std::ptrdiff_t(indiceCelda(a + 1, 0)),
                     celdas + std::ptrdiff_t(indiceCelda(b, 0)));
    cambio(std::min(a, b), std::max(a, b));
}

void Grilla::PermutarFilas(int desde, const std::vector<int> &orden)
{
    std::vector<FilaGrilla> filas;
    std::vector<CeldaGrilla> celdas;
    filas.reserve(orden.size());
    celdas.reserve(orden.size() * size_t(m_columnas));
    for (int o : orden) {
        filas.push_back(std::move(m_filas[size_t(desde + o)]));
        const auto primera = m_celdas.begin() + std::ptrdiff_t(indiceCelda(desde + o, 0));
        celdas.insert(celdas.end(), primera, primera + m_columnas);
    }
    std::move(filas.begin(), filas.end(), m_filas.begin() + desde);
    std::copy(celdas.begin(), celdas.end(), m_celdas.begin() + std::ptrdiff_t(indiceCelda(desde, 0)));
    cambio(desde, desde + int(orden.size()) - 1);
}

void Grilla::QuitarFilasMarcadas(const std::vector<bool> &quitar)
{
    size_t quedan = 0;
    for (size_t i = 0; i < m_filas.size(); ++i) {
        const bool quita = int(i) >= m_filasFijas && i < quitar.size() && quitar[i];
        if (quita) {
            soltarFilas(int(i), 1);
            continue;
        }
        if (quedan != i) {
            m_filas[quedan] = std::move(m_filas[i]);
            std::copy_n(m_celdas.begin() + std::ptrdiff_t(indiceCelda(int(i), 0)), m_columnas,
                        m_celdas.begin() + std::ptrdiff_t(indiceCelda(int(quedan), 0)));
        }
        ++quedan;
    }
    if (quedan == m_filas.size())
        return;
    m_filas.resize(quedan);
    m_celdas.resize(quedan * size_t(m_columnas));
    quizaCompactar();
    if (m_observador && m_redibujar)
        m_observador->Reinicio();
    else
        m_sucia = true;
}

QString Grilla::MascaraDe(int fila, int columna) const
{
    const qint16 m = celda(fila, columna).mascara;
    if (m == kMascaraColumna)
        return m_formatos[size_t(columna)];
    return m >= 0 ? m_mascaras[size_t(m)] : QString();
}

QString Grilla::Texto(int fila, int columna) const
{
    const CeldaGrilla &c = celda(fila, columna);
    if (c.mascara == -1)
        return m_textos[c.texto];
    const QString mascara = MascaraDe(fila, columna);
    return Mascara(mascara).Formatear(c.valor);
}

void Grilla::FijarTexto(int fila, int columna, const QString &texto)
{
    CeldaGrilla &c = celdaEditable(fila, columna);
    fijarIndiceTexto(c, texto.isEmpty() ? 0 : indiceTexto(texto));
    c.mascara = -1;
    c.valor = {};
    quizaCompactar();
    cambio(fila, fila);
}

qint16 Grilla::indiceMascara(const QString &mascara)
{
    const auto it = std::find(m_mascaras.begin(), m_mascaras.end(), mascara);
    if (it != m_mascaras.end())
        return qint16(it - m_mascaras.begin());
    m_mascaras.push_back(mascara);
    return qint16(m_mascaras.size() - 1);
}

void Grilla::FijarNumero(int fila, int columna, Importe valor, const QString &mascara)
{
    CeldaGrilla &c = celdaEditable(fila, columna);
    fijarIndiceTexto(c, 0);
    c.valor = valor;
    c.mascara = mascara.isEmpty() ? kMascaraColumna : indiceMascara(mascara);
    cambio(fila, fila);
}

Importe Grilla::Valor(int fila, int columna) const
{
    const CeldaGrilla &c = celda(fila, columna);
    if (c.mascara != -1)
        return c.valor;
    return c.texto == 0 ? Importe() : Importe::DesdeDouble(LeerNumero(m_textos[c.texto]));
}

void Grilla::guardarDato(CeldaGrilla &c, const QVariant &dato)
{
    using Tipo = CeldaGrilla::TipoDato;
    soltarDato(c);
    switch (dato.typeId()) {
    case QMetaType::UnknownType:
        c.tipoDato = Tipo::Nulo;
        c.carga = 0;
        return;
    case QMetaType::Int:
        c.tipoDato = Tipo::Entero;
        c.carga = dato.toInt();
        return;
    case QMetaType::Short:
        c.tipoDato = Tipo::Corto;
        c.carga = dato.value<short>();
        return;
    case QMetaType::LongLong:
        c.tipoDato = Tipo::Largo;
        c.carga = dato.toLongLong();
        return;
    case QMetaType::Double:
        c.tipoDato = Tipo::Doble;
        c.carga = std::bit_cast<qint64>(dato.toDouble());
        return;
    case QMetaType::QDate:
        c.tipoDato = Tipo::Fecha;
        c.carga = dato.toDate().toJulianDay();
        return;
    case QMetaType::QDateTime: {
        const QDateTime momento = dato.toDateTime();
        if (momento.isValid() && momento.timeSpec() == Qt::UTC) {
            c.tipoDato = Tipo::FechaHoraUtc;
            c.carga = momento.toMSecsSinceEpoch();
            return;
        }
        break;
    }
    case QMetaType::QString:
        c.tipoDato = Tipo::Texto;
        c.carga = indiceTexto(dato.toString());
        return;
    default:
        break;
    }
    c.tipoDato = Tipo::Otro;
    c.carga = qint64(m_otros.size());
    m_otros.push_back(dato);
}

QVariant Grilla::Dato(int fila, int columna) const
{
    using Tipo = CeldaGrilla::TipoDato;
    const CeldaGrilla &c = celda(fila, columna);
    switch (c.tipoDato) {
    case Tipo::Nulo:
        return {};
    case Tipo::Entero:
        return int(c.carga);
    case Tipo::Corto:
        return QVariant::fromValue(short(c.carga));
    case Tipo::Largo:
        return qlonglong(c.carga);
    case Tipo::Doble:
        return std::bit_cast<double>(c.carga);
    case Tipo::Fecha:
        return QDate::fromJulianDay(c.carga);
    case Tipo::FechaHoraUtc:
        return QDateTime::fromMSecsSinceEpoch(c.carga, Qt::UTC);
    case Tipo::Texto:
        return m_textos[size_t(c.carga)];
    case Tipo::Otro:
        return m_otros[size_t(c.carga)];
    }
    return {};
}

int Grilla::DatoEntero(int fila, int columna) const
{
    using Tipo = CeldaGrilla::TipoDato;
    const CeldaGrilla &c = celda(fila, columna);
    switch (c.tipoDato) {
    case Tipo::Nulo:
        return 0;
    case Tipo::Entero:
    case Tipo::Corto:
        return int(c.carga);
    default:
        return Dato(fila, columna).toInt();
    }
}

QString Grilla::DatoTexto(int fila, int columna) const
{
    using Tipo = CeldaGrilla::TipoDato;
    const CeldaGrilla &c = celda(fila, columna);
    switch (c.tipoDato) {
    case Tipo::Nulo:
        return {};
    case Tipo::Texto:
        return m_textos[size_t(c.carga)];
    default:
        return Dato(fila, columna).toString();
    }
}

void Grilla::FijarDato(int fila, int columna, const QVariant &dato)
{
    guardarDato(celdaEditable(fila, columna), dato);
    quizaCompactar();
}

void Grilla::FijarColorTexto(int fila, int columna, QRgb color)
{
    // A grid uses a few colours; past 255 of them a new one shows in the default colour.
    auto it = std::find(m_colores.begin(), m_colores.end(), color);
    if (it == m_colores.end() && m_colores.size() <= 255)
        it = m_colores.insert(m_colores.end(), color);
    celdaEditable(fila, columna).color = it == m_colores.end() ? 0 : quint8(it - m_colores.begin());
    cambio(fila, fila);
}

void Grilla::FijarAlineacion(int fila, int columna, Qt::Alignment alineacion)
{
    celdaEditable(fila, columna).alineacion = quint8(alineacion.toInt() & 0xff);
    cambio(fila, fila);
}

void Grilla::LimpiarTextos(int fila)
{
    for (int columna = 0; columna < m_columnas; ++columna) {
        CeldaGrilla &c = celdaEditable(fila, columna);
        fijarIndiceTexto(c, 0);
        c.mascara = -1;
        c.valor = {};
    }
    quizaCompactar();
    cambio(fila, fila);
}

void Grilla::FijarFondoFila(int fila, QRgb color)
{
    m_filas[size_t(fila)].fondo = color;
    cambio(fila, fila);
}

void Grilla::FijarBordeSuperior(int fila, QRgb color)
{
    m_filas[size_t(fila)].colorBorde = color;
    cambio(fila, fila);
}

void Grilla::FijarImagen(int fila, const QString &clave)
{
    auto it = std::find(m_imagenes.begin(), m_imagenes.end(), clave);
    if (clave.isEmpty())
        it = m_imagenes.begin();
    else if (it == m_imagenes.end() && m_imagenes.size() <= 255)
        it = m_imagenes.insert(m_imagenes.end(), clave);
    // A grid never shows more than a handful of pictures; past 255 keys a new one shows none.
    m_filas[size_t(fila)].imagen = it == m_imagenes.end() ? 0 : quint8(it - m_imagenes.begin());
    cambio(fila, fila);
}

void Grilla::FijarAltoFila(int fila, int alto)
{
    m_filas[size_t(fila)].alto = alto;
    cambio(fila, fila);
}

void Grilla::FijarFilaOculta(int fila, bool oculta)
{
    m_filas[size_t(fila)].oculta = oculta;
    cambio(fila, fila);
}

void Grilla::FijarAnchoColumna(int columna, int twips)
{
    m_anchos[size_t(columna)] = std::max(0, twips);
    cambio(0, 0);
}

void Grilla::FijarColumnaOculta(int columna, bool oculta)
{
    m_ocultas[size_t(columna)] = oculta;
    cambio(0, 0);
}

void Grilla::FijarAlineacionColumna(int columna, Qt::Alignment a)
{
    m_alineaciones[size_t(columna)] = a;
    cambio(0, 0);
}

void Grilla::FijarFormatoColumna(int columna, const QString &mascara)
{
    m_formatos[size_t(columna)] = mascara;
    cambio(m_filasFijas, std::max(m_filasFijas, Filas() - 1));
}

void Grilla::FijarEncabezados(const QString &formato)
{
    const QStringList columnas = formato.split(QLatin1Char('|'));
    for (int c = 0; c < m_columnas && c < columnas.size(); ++c) {
        QString t = columnas[c];
        Qt::Alignment a = Qt::AlignLeft | Qt::AlignVCenter;
        if (t.startsWith(QLatin1Char('>'))) {
            a = Qt::AlignRight | Qt::AlignVCenter;
            t.remove(0, 1);
        } else if (t.startsWith(QLatin1Char('<'))) {
            t.remove(0, 1);
        } else if (t.startsWith(QLatin1Char('^'))) {
            a = Qt::AlignCenter;
            t.remove(0, 1);
        }
        m_alineaciones[size_t(c)] = a;
        FijarTexto(0, c, t);
    }
    cambio(0, 0);
}
