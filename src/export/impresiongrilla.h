#pragma once

#include <QString>

#include <functional>
#include <utility>

class FuenteGrilla;
class Grilla;

// The print-preview view as the document uses it: it renders a grid into pages, shows
// them and prints them. Widths and margins are in twips.
class VistaImpresion
{
public:
    virtual ~VistaImpresion() = default;
    // 0 selects the first pair of margins, any other value the second.
    virtual int ModoPagina() const = 0;
    virtual int AnchoPagina() const = 0;
    virtual std::pair<int, int> Margenes(int par) const = 0;   // par 1 or 2
    virtual void FijarTitulo(const QString &titulo) = 0;
    virtual void Preparar() = 0;
    virtual void FijarOrigen(const FuenteGrilla &grilla) = 0;
    virtual void Renderizar() = 0;
    // Answers false when the user cancelled or the printer failed.
    virtual bool Imprimir() = 0;
    virtual void ConfigurarPagina() = 0;
    virtual void FijarVisible(bool visible) = 0;
    virtual void AlFrente() {}
};

// The print commands of the entry menu. Before the grid is handed to the view its closing
// row is hidden and the credit-account column takes what the other visible columns leave
// of the page; afterwards the grid is as it was, however the command ended.
class ImpresionGrilla
{
public:
    ImpresionGrilla(Grilla &grilla, VistaImpresion &vista, std::function<void()> enfocarGrilla,
                    double puntosPorPulgada = 96);

    void MnuPriPrevia(const QString &titulo, const QString &empresa) { Imprimir(true, titulo, empresa); }
    void MnuPriPrint(const QString &titulo, const QString &empresa) { Imprimir(false, titulo, empresa); }
    void MnuPriCnfgPage();

    // The width column 1 gets on the page: what the usable page width leaves after the
    // other visible columns, or its own when nothing is left.
    int AnchoColumnaCredito() const;

private:
    void Imprimir(bool previa, const QString &titulo, const QString &empresa);

    Grilla &m_g;
    VistaImpresion &m_vista;
    std::function<void()> m_enfocar;
    double m_ppp;
};
