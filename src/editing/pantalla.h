#pragma once

#include "entries/modeloasiento.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

// What the entry commands ask of the screen that shows the grid. The document implements
// it over its grid view; tests implement it over plain values.
class PantallaAsientos
{
public:
    virtual ~PantallaAsientos() = default;

    // The grid's current row.
    virtual int FilaActual() const = 0;
    // Makes a data row current and shows it; other rows are ignored.
    virtual void SeleccionarFila(int fila) = 0;
    // Brings the grid's context (font, width, order) up to date before rows are loaded.
    virtual void ActualizarContexto() = 0;
};

// The header fields of the edited entry as the screen shows them.
struct ValoresCabezal
{
    QDate fecha;
    bool fechaHabilitada = true; // false: an account of the entry is closed at its date
    QString leyenda;
    qint16 libro = 0;            // 0: none chosen
    QString libroFijo;           // not empty: the book is shown by this name and cannot change
    qint16 autoriza = 0;         // 0: none chosen
    bool autorizaHabilitado = true;
};

// What the edit session asks of the screen: the header fields above the grid and the line
// editor laid over the edited row. Nothing here decides; the session does.
class VistaEdicion : public PantallaAsientos
{
public:
    // The books the header's list offers, by name.
    virtual void FijarLibros(const QList<std::pair<QString, qint16>> &libros) = 0;
    // Whether the company's entries carry an authoriser, so the header shows that list.
    virtual bool ConAutoriza() const = 0;

    // Opens the header area with these values and the grid in its edit view.
    virtual void AbrirCabezal(const ValoresCabezal &valores) = 0;
    // The values typed in the header; fecha is invalid when the date typed cannot be read
    // (the field has then said so and keeps the focus).
    virtual ValoresCabezal LeerCabezal() = 0;
    virtual void FijarFecha(const QDate &fecha) = 0;
    virtual void EnfocarFecha() = 0;

    // Loads the line editor for the edited row: the entry's date, the amount still missing
    // (debit side when debeMenor) and the row's line, if it has one.
    virtual void CargarEditor(const QDate &fecha, std::optional<std::pair<bool, Importe>> diferencia,
                              const std::optional<RegistroLinea> &linea) = 0;
    // The account typed in the line editor on one side; none when that side is blank.
    virtual std::optional<ValorLinea> LineaDelEditor(bool debe) const = 0;
    // Lays the editor over the row, scrolled into view; with enfocar, its first field takes
    // the focus (otherwise the header's first open field does).
    virtual void MostrarEditor(int fila, bool enfocar) = 0;
    // Back to an edit the user did not leave after all: the editor over its row again, the
    // row current, the focus in the field that had it.
    virtual void RetomarEdicion(int fila) { MostrarEditor(fila, true); }
    // Closes the header area and the editor; the grid is the focus again, on this row.
    virtual void CerrarEdicion(int fila) = 0;
};
