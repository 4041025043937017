#pragma once

#include "editing/comandosasiento.h"
#include "editing/datosdocumento.h"
#include "editing/pantalla.h"
#include "entries/asientosgrilla.h"
#include "entries/saldosiniciales.h"

#include <functional>
#include <optional>

// The company's opening-balance entry: whether it exists, making it from the balances
// stored with the accounts, and turning an entry into it and back. The opening-balance
// entry is the registered entry of the opening-balance book; it is dated on the session's
// opening-balance date (DatosDocumento::fechaAsientoApertura). Messages go through the
// document's message service; a database failure is told with 1930 (making it) or 1933
// (converting) and leaves nothing half-written.
class AsientoApertura
{
public:
    AsientoApertura(DatosDocumento &datos, AsientosGrilla &asientos, ComandosAsiento &comandos, PantallaAsientos &pantalla);

    // Reads again whether the entry exists, and tells alCambiar when the answer changed
    // (or was never told). When it cannot be read, the last answer stands, and with
    // decirFallo the failure is told (1906, as a failed read of what entry input needs).
    bool ActualizarExisteApertura(bool decirFallo = false);
    bool ExisteAsientoApertura() const { return m_existe; }
    // Whether, without one, an entry of the opening-balance book was made and not finished
    // (a draft or incomplete): the banner then invites to finish it. alCambiar is told when
    // this changes too.
    bool HayAsientoSinTerminar() const { return m_sinTerminar; }
    std::function<void(bool existe)> alCambiar;
    // Opens the help page of the opening-balance entry.
    std::function<void()> ayuda;

    // The menu command: with the add right and no such entry yet, question 1827, then the
    // entry is made and shown after the last row. One made and not finished yet is shown
    // instead, with 1960.
    void MnuEdiAPA();
    // Selects the entry's header row, loading the entry after the last row when it is not
    // shown.
    void MostrarAsiento(qint32 asiID);
    // Makes the entry from the accounts' balances, registered when they balance (incomplete
    // otherwise, to be finished by hand). Accounts closed on or after the opening-balance
    // date are opened first, after the user agrees. Answers the new entry's id; 0 when none
    // was made (1835 it exists already; 1855 no account has a balance; 1959 a foreign
    // balance stored without its accounting-currency value and no quotation to value it;
    // 1929 the quotations could not be read; the user declined). A foreign balance without that value is valued at the quotation
    // of the opening-balance date.
    qint32 HacerAsientoApertura();
    // With accounts to open, asks (OK/Cancel) to open them; true when there is nothing to
    // open or the user agrees.
    bool PreguntarAbrirCuentas(const QString &lista);
    // Turns the entry of the current row into the opening-balance entry (question 1856,
    // while there is none), or the opening-balance entry back into an ordinary entry of the
    // default book (question 1857 and the checks of a change to it). Refused: accounts of
    // the entry closed at its date (1812), or closed on or after the opening-balance date
    // (1811), no book to move it to (1837).
    void ConvertirApertura();

private:
    // Reads whether the entry exists (and whether one is unfinished), telling alCambiar.
    Resultado<bool> actualizar();
    // Whether it exists, for a command that needs to know: none, after telling the failure
    // with the command's text textoFallo, when it cannot be read.
    std::optional<bool> existeApertura(int textoFallo);
    bool valorarSaldosExtranjeros(QVector<LineaDatos> &lineas, const QVector<qint16> &monedas);
    SaldosIniciales saldosIniciales() const;
    qint16 libroNormal() const;

    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    ComandosAsiento &m_comandos;
    PantallaAsientos &m_pantalla;
    bool m_existe = false;
    bool m_sinTerminar = false;
    bool m_dicho = false; // alCambiar has been told at least once
};
