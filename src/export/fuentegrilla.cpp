#include "fuentegrilla.h"

#include "currency/mascara.h"
#include "entries/grilla.h"

#include <QGuiApplication>
#include <QPalette>

#include <cmath>

namespace ColorVista {

quint32 DesdeRgb(QRgb rgb)
{
    if (qAlpha(rgb) == 0)
        return 0;
    return quint32(qRed(rgb)) | (quint32(qGreen(rgb)) << 8) | (quint32(qBlue(rgb)) << 16);
}

namespace {

// The desktop's system colours by index, as a light desktop theme has them, and the
// palette role that stands for each where the application has one.
struct ColorSistema
{
    QRgb porDefecto;
    int rol; // a QPalette::ColorRole, or -1
};

const ColorSistema kColoresSistema[] = {
    {0xffc8c8c8, -1},                        // 0 scroll bar
    {0xff000000, -1},                        // 1 desktop
    {0xff99b4d1, -1},                        // 2 active caption
    {0xffbfcddb, -1},                        // 3 inactive caption
    {0xfff0f0f0, QPalette::Window},          // 4 menu
    {0xffffffff, QPalette::Base},            // 5 window
    {0xff646464, -1},                        // 6 window frame
    {0xff000000, QPalette::WindowText},      // 7 menu text
    {0xff000000, QPalette::Text},            // 8 window text
    {0xff000000, -1},                        // 9 caption text
    {0xffb4b4b4, -1},                        // 10 active border
    {0xfff4f7fc, -1},                        // 11 inactive border
    {0xffababab, -1},                        // 12 application workspace
    {0xff0078d7, QPalette::Highlight},       // 13 highlight
    {0xffffffff, QPalette::HighlightedText}, // 14 highlighted text
    {0xfff0f0f0, QPalette::Button},          // 15 button face
    {0xffa0a0a0, QPalette::Dark},            // 16 button shadow
    {0xff6d6d6d, QPalette::PlaceholderText}, // 17 grey text
    {0xff000000, QPalette::ButtonText},      // 18 button text
    {0xff000000, -1},                        // 19 inactive caption text
    {0xffffffff, QPalette::Light},           // 20 button highlight
    {0xff696969, QPalette::Shadow},          // 21 3D dark shadow
    {0xffe3e3e3, QPalette::Midlight},        // 22 3D light
    {0xff000000, QPalette::ToolTipText},     // 23 tooltip text
    {0xffffffe1, QPalette::ToolTipBase},     // 24 tooltip background
};

} // namespace

QColor AColor(quint32 valor)
{
    if (valor & kSistema) {
        const quint32 indice = valor & ~kSistema;
        if (indice >= std::size(kColoresSistema))
            return QColor(Qt::black);
        const ColorSistema &s = kColoresSistema[indice];
        if (s.rol >= 0 && qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
            return QGuiApplication::palette().color(QPalette::ColorRole(s.rol));
        return QColor::fromRgb(s.porDefecto);
    }
    return QColor(int(valor & 0xff), int((valor >> 8) & 0xff), int((valor >> 16) & 0xff));
}

} // namespace ColorVista

FuenteDeGrilla::FuenteDeGrilla(const Grilla &grilla, double puntosPorPulgada, int anchoControlTwips)
    : m_g(grilla)
    , m_ppp(puntosPorPulgada > 0 ? puntosPorPulgada : 96)
    , m_anchoControl(anchoControlTwips)
{
}

FuenteDeGrilla::~FuenteDeGrilla() = default;

int FuenteDeGrilla::Filas() const { return m_g.Filas(); }
int FuenteDeGrilla::Columnas() const { return m_g.Columnas(); }
int FuenteDeGrilla::FilasFijas() const { return m_g.FilasFijas(); }
int FuenteDeGrilla::AnchoColumna(int columna) const { return m_g.AnchoColumna(columna); }
bool FuenteDeGrilla::ColumnaOculta(int columna) const { return m_g.ColumnaOculta(columna); }
bool FuenteDeGrilla::FilaOculta(int fila) const { return m_g.Fila(fila).oculta; }

int FuenteDeGrilla::AltoFila(int fila) const
{
    // A row without its own height has the grid's: never 0.
    const int px = m_g.Fila(fila).alto;
    return int(std::lround((px > 0 ? px : 20) * TwipsPorPixel()));
}

RangoCeldas FuenteDeGrilla::Rango(int fila, int columna) const
{
    return RangoCombinado(m_g, fila, columna);
}

QString FuenteDeGrilla::Texto(int fila, int columna) const
{
    if (!m_g.EsNumero(fila, columna))
        return m_g.TextoGuardado(fila, columna);
    const QString mascara = m_g.MascaraDe(fila, columna);
    if (mascara.isEmpty())
        return m_g.Texto(fila, columna);
    std::shared_ptr<Mascara> &m = m_mascaras[mascara];
    if (!m)
        m = std::make_shared<Mascara>(mascara);
    return m->Formatear(m_g.celda(fila, columna).valor);
}

double FuenteDeGrilla::Valor(int fila, int columna) const
{
    return m_g.Valor(fila, columna).aDouble();
}

quint32 FuenteDeGrilla::ColorFondo(int fila, int) const
{
    return ColorVista::DesdeRgb(m_g.Fila(fila).fondo);
}

quint32 FuenteDeGrilla::ColorTexto(int fila, int columna) const
{
    return ColorVista::DesdeRgb(m_g.ColorTexto(fila, columna));
}

int FuenteDeGrilla::AlineacionColumna(int columna) const
{
    const Qt::Alignment a = m_g.AlineacionColumna(columna);
    if (a & Qt::AlignRight)
        return 7;
    if (a & Qt::AlignHCenter)
        return 4;
    if (a & Qt::AlignLeft)
        return 1;
    return 9;
}

bool FuenteDeGrilla::EsNumero(int fila, int columna) const
{
    return m_g.EsNumero(fila, columna);
}

QString FuenteDeGrilla::MascaraDe(int fila, int columna) const
{
    return m_g.MascaraDe(fila, columna);
}

QDate FuenteDeGrilla::FechaCabezal(int fila) const
{
    if (!EsFilaCabezal(m_g, fila))
        return {};
    return m_g.Dato(fila, 2).toDate();
}

QString FuenteDeGrilla::LeyendaCabezal(int fila) const
{
    // The header text is the date, a run of blanks that lines the legends up, the legend.
    const QString t = m_g.TextoGuardado(fila, 1);
    const qsizetype blancos = t.indexOf(QLatin1String("  "));
    return blancos < 0 ? QString() : t.mid(blancos).trimmed();
}
