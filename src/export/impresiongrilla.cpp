#include "impresiongrilla.h"

#include "fuentegrilla.h"
#include "grillaensalida.h"

#include "entries/grilla.h"

namespace {

constexpr int kColumnaCredito = 1;

// Steps 1-3 taken and undone: the grid out of the screen's hands, column 1 remembered.
class GrillaParaImprimir
{
public:
    explicit GrillaParaImprimir(Grilla &g)
        : m_g(g)
        , m_salida(g)
        , m_ancho(g.AnchoColumna(kColumnaCredito))
    {
    }
    ~GrillaParaImprimir() { m_g.FijarAnchoColumna(kColumnaCredito, m_ancho); }

private:
    Grilla &m_g;
    GrillaEnSalida m_salida;
    int m_ancho;
};

} // namespace

ImpresionGrilla::ImpresionGrilla(Grilla &grilla, VistaImpresion &vista, std::function<void()> enfocarGrilla,
                                 double puntosPorPulgada)
    : m_g(grilla)
    , m_vista(vista)
    , m_enfocar(std::move(enfocarGrilla))
    , m_ppp(puntosPorPulgada)
{
}

int ImpresionGrilla::AnchoColumnaCredito() const
{
    int otras = 0;
    for (int c = 0; c < m_g.Columnas(); ++c)
        if (c != kColumnaCredito && !m_g.ColumnaOculta(c))
            otras += m_g.AnchoColumna(c);
    const auto [m1, m2] = m_vista.Margenes(m_vista.ModoPagina() == 0 ? 1 : 2);
    const int libre = m_vista.AnchoPagina() - m1 - m2 - otras;
    return libre > 0 ? libre : m_g.AnchoColumna(kColumnaCredito);
}

void ImpresionGrilla::Imprimir(bool previa, const QString &titulo, const QString &empresa)
{
    const GrillaParaImprimir preparada(m_g);
    m_g.FijarAnchoColumna(kColumnaCredito, AnchoColumnaCredito());
    m_vista.FijarTitulo(titulo + QStringLiteral("||") + empresa);
    if (previa)
        m_vista.AlFrente();
    const FuenteDeGrilla fuente(m_g, m_ppp);
    m_vista.Preparar();
    m_vista.FijarOrigen(fuente);
    m_vista.Renderizar();
    if (previa)
        m_vista.FijarVisible(true);
    else
        m_vista.Imprimir();
    if (m_enfocar)
        m_enfocar();
}

void ImpresionGrilla::MnuPriCnfgPage()
{
    m_vista.ConfigurarPagina();
    if (m_enfocar)
        m_enfocar();
}
