#include "grilla.h"

#include "currency/mascara.h"

#include <algorithm>

Grilla::Grilla(int columnas, int filasFijas)
    : m_columnas(columnas)
    , m_filasFijas(filasFijas)
    , m_anchos(size_t(columnas), 1440)
    , m_ocultas(size_t(columnas), false)
    , m_alineaciones(size_t(columnas), Qt::AlignLeft | Qt::AlignVCenter)
    , m_formatos(size_t(columnas))
{
    m_filas.resize(size_t(filasFijas), filaVacia());
}

FilaGrilla Grilla::filaVacia() const
{
    FilaGrilla f;
    f.celdas.resize(size_t(m_columnas));
    return f;
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
    if (cantidad == 1)
        m_filas.insert(m_filas.begin() + fila, filaVacia());
    else
        m_filas.insert(m_filas.begin() + fila, size_t(cantidad), filaVacia());
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
    m_filas.erase(m_filas.begin() + fila, m_filas.begin() + fila + cantidad);
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
    auto inicio = m_filas.begin();
    if (antes < desde)
        std::rotate(inicio + antes, inicio + desde, inicio + desde + cantidad);
    else
        std::rotate(inicio + desde, inicio + desde + cantidad, inicio + antes);
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
    cambio(std::min(a, b), std::max(a, b));
}

void Grilla::PermutarFilas(int desde, const std::vector<int> &orden)
{
    std::vector<FilaGrilla> nuevas;
    nuevas.reserve(orden.size());
    for (int o : orden)
        nuevas.push_back(std::move(m_filas[size_t(desde + o)]));
    std::move(nuevas.begin(), nuevas.end(), m_filas.begin() + desde);
    cambio(desde, desde + int(orden.size()) - 1);
}

void Grilla::QuitarFilasMarcadas(const std::vector<bool> &quitar)
{
    std::vector<FilaGrilla> quedan;
    quedan.reserve(m_filas.size());
    for (size_t i = 0; i < m_filas.size(); ++i)
        if (int(i) < m_filasFijas || i >= quitar.size() || !quitar[i])
            quedan.push_back(std::move(m_filas[i]));
    if (quedan.size() == m_filas.size()) {
        m_filas = std::move(quedan);
        return;
    }
    m_filas = std::move(quedan);
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
        return c.texto;
    const QString mascara = MascaraDe(fila, columna);
    return Mascara(mascara).Formatear(c.valor);
}

void Grilla::FijarTexto(int fila, int columna, const QString &texto)
{
    CeldaGrilla &c = celdaEditable(fila, columna);
    c.texto = texto;
    c.mascara = -1;
    c.valor = {};
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
    c.texto.clear();
    c.valor = valor;
    c.mascara = mascara.isEmpty() ? kMascaraColumna : indiceMascara(mascara);
    cambio(fila, fila);
}

Importe Grilla::Valor(int fila, int columna) const
{
    const CeldaGrilla &c = celda(fila, columna);
    if (c.mascara != -1)
        return c.valor;
    return c.texto.isEmpty() ? Importe() : Importe::DesdeDouble(LeerNumero(c.texto));
}

void Grilla::FijarDato(int fila, int columna, const QVariant &dato)
{
    celdaEditable(fila, columna).dato = dato;
}

void Grilla::FijarColorTexto(int fila, int columna, QRgb color)
{
    celdaEditable(fila, columna).colorTexto = color;
    cambio(fila, fila);
}

void Grilla::FijarAlineacion(int fila, int columna, Qt::Alignment alineacion)
{
    celdaEditable(fila, columna).alineacion = quint8(alineacion.toInt() & 0xff);
    cambio(fila, fila);
}

void Grilla::LimpiarTextos(int fila)
{
    for (CeldaGrilla &c : m_filas[size_t(fila)].celdas) {
        c.texto.clear();
        c.mascara = -1;
        c.valor = {};
    }
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
    m_filas[size_t(fila)].imagen = clave;
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
        celdaEditable(0, c).texto = t;
    }
    cambio(0, 0);
}
