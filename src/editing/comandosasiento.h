#pragma once

#include "editing/datosdocumento.h"
#include "editing/pantalla.h"
#include "entries/asientodatos.h"
#include "entries/asientosgrilla.h"
#include "entries/saldosiniciales.h"

#include <QList>
#include <QString>

#include <optional>
#include <utility>

// The commands of the entry menu: registering, drafts in bulk and the writes of the edited
// entry (deleting, copying and hiding an entry are ComandosAsientoEntero's). They work on the grid's entries and
// the store, ask and tell through the message service, and open no window. A command acts
// on the entry of the screen's current row and leaves the grid's current entry
// (AsientosGrilla::Cabezal) reset, except the writes of the edited entry, which work on it.
// A database failure is told with the command's catalogue text and its detail; nothing is
// left half-written.
class ComandosAsiento
{
public:
    ComandosAsiento(DatosDocumento &datos, AsientosGrilla &asientos, PantallaAsientos &pantalla);

    // Registers a draft, or puts a registered entry back to draft (a future draft may
    // become a scheduled frequent entry instead, 1807/1838). An entry never stored is
    // stored. Refused: changed by someone else (1820), a closed account (1811).
    void RegistrarAsiento();
    // Registers every entry of the grid in state estadoOrigen that is not in the future;
    // 1822 when some were refused. A failure of the database stops the run (1913, with its
    // detail); what was registered before it stays.
    void RegistrarListados(qint16 estadoOrigen);
    // Writes the current entry's header values over the stored entry. False when refused
    // (1813 a date across a closed account, whose stored values then come back; 1820) or
    // failed (1923).
    bool GrabarCabezal();
    // Writes the current entry with its grid lines, as registered (or draft) when it
    // balances, incomplete when not; an incomplete opening-balance entry that balances
    // becomes the opening-balance entry. False when refused or failed (1811, 1820, 1924).
    bool GrabarAsientoCompleto(bool asientoCierra);
    // False, after saying why, when the opening-balance entry may not change; a failure to
    // read is told with the command's text textoFallo.
    bool PuedeModificarApertura(int textoFallo);
    // The same, answering a failure to read for the caller to tell.
    Resultado<bool> ModificableApertura();

    // The book an entry moved off a system book gets: the company's default book, else the
    // first by name; none when the company has no other book.
    Resultado<std::optional<std::pair<QString, qint16>>> LibroComun() const;
    // The opening-balance entry's queries, for this company and database.
    SaldosIniciales saldosIniciales() const;
    // Whether an account of the current entry's lines is closed at fecha, from the closing
    // dates the grid carries.
    bool HayCuentasCerradasEnGrilla(const QDate &fecha) const;
    // Replaces the rows of the entry whose header row is cabezal by the entry asiID as
    // stored.
    void RecargarAsiento(qint32 asiID, int cabezal);
    // Loads a stored entry into the grid with its header at fila.
    void CargarAsiento(qint32 asiID, int fila);
    // Before a stored entry is opened: when another session wrote it after the grid read
    // it, its rows are replaced by the entry as stored now (Releida), or taken out of the
    // grid when it was deleted or sent to the trash (Quitada, and the user is told). A
    // failure to read the store is answered, for the caller to tell.
    enum class Vigencia { Vigente, Releida, Quitada };
    Resultado<Vigencia> ReleerSiCambio(int cabezal);

    // The entry of the grid's current row becomes the current entry; answers its header
    // row, -1 when the row belongs to no entry.
    int TomarAsientoDeFilaActual();
    // The store's entry service for this document's user.
    AsientoDatos NuevoAsientoDatos() const;
    // Tells why the store refused a read or a write: a rule's refusal by its own text (an
    // unbalanced entry with its totals), any other failure by the command's text with the
    // detail.
    void DecirRechazo(const Fallo &fallo, int textoComando) const;
    // The state a balanced entry is stored in when it becomes complete: registered, or a
    // draft when the user keeps new entries as drafts or when it is dated after today.
    qint16 EstadoCompleto(const QDate &fecha) const;

private:
    bool libroParaApertura(CabezalDatos &d, bool &esApertura);

    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    Grilla &m_grilla;
    PantallaAsientos &m_pantalla;
};
