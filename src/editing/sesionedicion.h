#pragma once

#include "editing/comandosasiento.h"
#include "editing/datosdocumento.h"
#include "editing/pantalla.h"
#include "entries/asientosgrilla.h"

#include <QList>
#include <QString>

#include <optional>
#include <utility>

// The entry being edited: its rows in the grid, its header values, the row the line editor
// lies over and whether lines were accepted since the entry was last written. One entry at
// most is edited at a time; the grid's current entry (AsientosGrilla::Cabezal) is the edited
// one while it lasts. The session decides and writes; the screen behind VistaEdicion only
// shows and reads what it is given. Messages go through the document's message service.
class SesionEdicion
{
public:
    SesionEdicion(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos, VistaEdicion &vista);

    // Opens the entry of a row: the placeholder row starts a new entry, the header row
    // opens the first line. False, and nothing opened, without the permission (A for a new
    // entry, M for a stored one), for an opening-balance entry that may not change, when
    // no book can be offered (1828) or when the entry cannot be read (1928).
    bool EntrarEdicion(int fila);
    // Takes the line typed into the grid and the header values into the entry. A balanced
    // entry is written and the edit ends; an unbalanced one keeps a new row open below with
    // the missing amount proposed. Refused, with the focus where the fault is: a date that
    // cannot be read; a typed line with no amount at all (1954); an amount of 0 in the account's currency unless confirmed (1819); an
    // account closed at the date (1815 for the entry's own, 1821 otherwise); a second rate
    // for a currency is settled by questions 1832 and 1833. A balanced entry dated in the
    // future may become a scheduled frequent entry instead (1807).
    void AceptarLinea();
    // How an edit is left.
    enum class Salida {
        Comando, // a command, a view, another entry, closing the window: nothing typed is lost
        Escape,  // the user's way out: a line typed is asked about, as for any other
        Cierre   // the document goes away and can ask nothing: what can be stored is
    };
    // Ends the edit: lines accepted and not yet written are written (incomplete when they do
    // not balance); a stored entry is shown as stored. Typed work is never dropped unasked:
    // with a line typed and not accepted, whatever the way out, question 1956 chooses to store
    // it (the line is accepted as Enter would do, then the entry written), to drop that line,
    // or to go back to the edit with everything as typed; after a write of this edit was
    // refused, question 1961 chooses to try the write again, to discard the edit (the entry
    // is shown as stored), or to go back. Answers whether the edit ended; false leaves it
    // open.
    bool SalirEdicion(Salida salida = Salida::Comando);
    // As SalirEdicion, with the edited line as the current row again once the entry has
    // been re-read; false when that row was no stored line (then the entry's header row is)
    // or the edit stays open.
    bool SalirEdicionEnLaFila();
    // Whether the line editor holds a line the entry does not have: an account typed on a
    // new row, or a stored line changed and not accepted.
    bool LineaSinAceptar() const;
    // Opens a new line at the end of the current row's entry.
    void AgregarCuenta();
    // Opens a new entry on the placeholder row.
    void NuevoAsiento();

    // The edited row; 0 while no entry is edited.
    int FilaEdicion() const { return m_filaEdicion; }
    // The books are read again on the next edit, after they were changed.
    void OlvidarLibros() { m_libros.clear(); }

private:
    void cargarLineaEnEditor(int fila);
    std::optional<bool> leerLibros();
    // None after telling (1928) that the store could not be read.
    std::optional<ValoresCabezal> valoresDelCabezal(int cabezal);
    void escribirLinea(int fila, const RegistroLinea &linea);
    void terminarEdicion(bool recargar);
    bool guardarCabezalCambiado();
    bool escribirAlSalir(bool &escrito);
    void abrirLineaNueva();
    enum class Decision { Grabar, Descartar, Volver };
    Decision decidir(Salida salida, int pregunta) const;
    QString nombreLibro(qint16 libro) const;

    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    Grilla &m_grilla;
    ComandosAsiento &m_comandos;
    VistaEdicion &m_vista;
    QList<std::pair<QString, qint16>> m_libros; // the books the header offers, by name
    ValoresCabezal m_abiertos; // the header as shown, or as last taken with a line
    int m_filaEdicion = 0;
    bool m_pendiente = false;          // lines accepted since the entry was last written
    bool m_libroFijo = false;          // the entry's book cannot change here (a system book)
    QString m_nombreLibroFijo;         // and its name
    bool m_escrituraRechazada = false; // a write was refused; leaving asks what becomes of the edit
    bool m_inalterable = false;        // the entry may not change at all (1811); leaving re-reads it
};
