#pragma once

#include "entries/grilla.h"

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <QTableView>

#include <functional>

// The grid's model: a thin adapter over a Grilla (row 0 of the Grilla is the header). It
// follows the Grilla through ObservadorGrilla; a fill with redraw off arrives as one reset.
class ModeloGrilla final : public QAbstractTableModel, public ObservadorGrilla
{
    Q_OBJECT
public:
    explicit ModeloGrilla(Grilla &grilla, QObject *padre = nullptr);
    ~ModeloGrilla() override;

    int rowCount(const QModelIndex &padre = {}) const override;
    int columnCount(const QModelIndex &padre = {}) const override;
    QVariant data(const QModelIndex &indice, int rol = Qt::DisplayRole) const override;
    QVariant headerData(int seccion, Qt::Orientation orientacion, int rol = Qt::DisplayRole) const override;

    Grilla &grilla() const { return m_g; }
    static QIcon IconoEstado(const QString &clave);
    // The tooltip of a cell (grid row and column); none when not set.
    void FijarAyuda(std::function<QString(int fila, int columna)> ayuda) { m_ayuda = std::move(ayuda); }
    // What a screen reader says for a row (grid row); the cell's text when not set or empty.
    void FijarTextoAccesible(std::function<QString(int fila)> texto) { m_textoAccesible = std::move(texto); }

    void AntesDeInsertar(int fila, int cantidad) override;
    void DespuesDeInsertar() override;
    void AntesDeQuitar(int fila, int cantidad) override;
    void DespuesDeQuitar() override;
    void AntesDeMover(int desde, int cantidad, int antes) override;
    void DespuesDeMover() override;
    void CeldasCambiadas(int fila1, int fila2) override;
    void Reinicio() override;

signals:
    void Reiniciado();

private:
    Grilla &m_g;
    std::function<QString(int, int)> m_ayuda;
    std::function<QString(int)> m_textoAccesible;
    int m_filas = 0;   // rows as the views know them; changes only inside begin/end pairs
};

// Paints a cell from the Grilla alone: row background, the separating top border, the state
// picture, the credit side's colour, and the header row's date and legend across the empty
// columns next to it.
class DelegadoGrilla final : public QStyledItemDelegate
{
    Q_OBJECT
public:
    DelegadoGrilla(Grilla &grilla, QTableView *vista);
    void paint(QPainter *p, const QStyleOptionViewItem &opcion, const QModelIndex &indice) const override;

private:
    Grilla &m_g;
    QTableView *m_vista;
};

// The journal grid on screen. Reports the grid events the document acts on; widths are kept
// in the Grilla in twips so that the layout file saves them.
class vsGrid : public QTableView
{
    Q_OBJECT
public:
    explicit vsGrid(Grilla &grilla, QWidget *padre = nullptr);

    Grilla &grilla() const { return m_modelo->grilla(); }
    ModeloGrilla *modelo() const { return m_modelo; }

    // Grid rows (the Grilla's numbering: row 0 is the caption row).
    int FilaActual() const;
    void FijarFilaActual(int fila);
    int FilaSuperior() const;
    void FijarColoresSeleccion(const QColor &fondo, const QColor &texto);
    int AnchoClienteTwips() const;
    int PixelesATwips(int px) const;
    int TwipsAPixeles(int twips) const;
    void AplicarAnchos();

signals:
    void Click();
    // A key pressed; the receiver sets *atendida to consume it.
    void KeyDown(int tecla, Qt::KeyboardModifiers modificadores, bool *atendida);
    void KeyPress(int ascii, bool *atendida);
    void MouseDown(Qt::MouseButton boton, const QPoint &posicion);
    void FilaActualCambiada();
    void Desplazado();

protected:
    void keyPressEvent(QKeyEvent *evento) override;
    void mousePressEvent(QMouseEvent *evento) override;
    void mouseReleaseEvent(QMouseEvent *evento) override;
    void currentChanged(const QModelIndex &actual, const QModelIndex &anterior) override;
    void resizeEvent(QResizeEvent *evento) override;

private:
    ModeloGrilla *m_modelo;
    bool m_aplicandoAnchos = false;
};
