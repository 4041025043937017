#pragma once

#include "asientodatos.h"
#include "grilla.h"
#include "modeloasiento.h"

#include "currency/mascara.h"
#include "store/conexion.h"
#include "store/fallo.h"

#include <QFont>
#include <QHash>
#include <QLocale>

#include <functional>
#include <optional>
#include <vector>

class CatalogoMonedas;

// What the entry logic needs to know of the session.
struct ContextoAsientos
{
    CatalogoMonedas *monedas = nullptr;
    qint16 monedaContabilidad = 0;
    bool mostrarCodigoCta = true;
    QString formatoFecha = QStringLiteral("dd/mm/yyyy"); // header dates, suite notation
    std::function<QString(int)> texto;                   // catalogue text by its number
    QFont fuente;                                        // the document's font
    int rellenoFijo = -1;                                // blanks after a header's date; -1: measured in fuente
    double puntosPorPulgada = 96;                        // logical DPI, for twips
    int anchoClienteTwips = 0;                           // the grid's client width; 0 unknown
    quint8 AsiOrder = 0;                                 // line order: 0 by account, 1 by entry
    qint32 empresa = 0;
    QString delimitadorFecha = QStringLiteral("'");
    QString patronFecha = QStringLiteral("yyyy-mm-dd");
    std::shared_ptr<const Reloj> reloj = std::make_shared<Reloj>(); // a cleared header's date
};

// Grid colours, as the suite states them.
namespace ColoresGrilla {
constexpr QRgb kHaber = 0xff000080;          // credit accounts and amounts: dark blue
constexpr QRgb kFondoCabezal = 0xffe5e5e5;   // header rows
constexpr QRgb kBordeAsiento = 0xffb9dbea;   // line between entries
constexpr QRgb kSeleccionCabezal = 0xffc9dae6;
} // namespace ColoresGrilla

// A block of cells shown as one, from its first cell to its last.
struct RangoCeldas
{
    int fila1 = 0;
    int columna1 = 0;
    int fila2 = 0;
    int columna2 = 0;
};
// Whether a row is an entry's header row: the entry id in column 0 and no line key.
bool EsFilaCabezal(const Grilla &g, int fila);
// The cells shown as one with (fila, columna): an entry's header row runs its date and
// legend over columns 1 to 3 and its book over column 4 to the last; any other cell
// stands alone. Screen, print and every export use this one rule.
RangoCeldas RangoCombinado(const Grilla &g, int fila, int columna);

// Field n (0: account, 1 project, 2 department, 3 currency, 4 order) of a line key.
int CampoDeClave(const QString &clave, int campo);

// A journal grid as the document starts it: six columns, default widths (twips) and the
// captions and alignments of the heading format ("<Cuenta|<|>Debe|...").
void PrepararGrillaAsientos(Grilla &grilla, const QString &encabezados);

// The sort key of one line row.
struct ClaveOrden
{
    bool alDebe = false;        // the row has text in column 0
    QString texto0;
    QString texto1;
    int orden = 0;              // ACuOrden, the last part of the line key
    bool esDiferencia = false;  // the difference row
};
// Whether row a must go below row b (the exchange sort's test), in mode 0 or 1.
bool FueraDeOrden(const ClaveOrden &a, const ClaveOrden &b, quint8 modo);
// The order the exchange sort leaves the rows in, found in O(n log n): element i of the
// result is the index of the row that ends up at position i.
std::vector<int> OrdenCuentas(const std::vector<ClaveOrden> &filas, quint8 modo);

// The entries in the grid: header and line rows, the current entry, filling from a result
// set, balance test, difference row and line order. Works on a Grilla; shows nothing.
class AsientosGrilla
{
public:
    static const QString kClaveDiferencia;     // "-1|0|0|0|999"
    static const QString kTextoDiferencia;     // "................?"

    AsientosGrilla(Grilla &grilla, ContextoAsientos &contexto);

    Grilla &grilla() { return m_g; }
    ContextoAsientos &contexto() { return m_ctx; }

    CabezalAsiento Cabezal;
    bool listo = true;                 // the current-row handler acts only when set

    void ResetCabezal() { ::ResetCabezal(Cabezal, m_ctx.reloj->Ahora()); }

    // Rows.
    void FilaCabezalAsiento(const QString &libro);
    void FilaLineaAsiento(int fila, const RegistroLinea &linea);
    void ClaveLinea(int fila, qint32 lCta, qint16 iMon, qint16 iPry, qint16 iDep, qint16 ACuOrden);
    void FilaNuevoAsiento();
    void ClaveEstado(int fila, qint16 estado);
    qint16 EstadoDeFila(int fila) const;
    qint16 LibroDeFila(int fila) const;
    qint16 AutorizaDeFila(int fila) const;
    // The legend shown in a header row.
    QString LeyendaDeFila(int fila) const;
    // A row in words, as a screen reader says it: a header row's date, legend, book and
    // state; a line's side, account and amounts with their currencies; the difference row's
    // side and amount. Empty for the caption row.
    QString TextoAccesible(int fila) const;
    // The catalogue text of an entry's state, as its picture shows it; empty for none.
    QString NombreEstado(qint16 estado) const;
    void FijarLibroAutoriza(int fila, qint16 tipo, qint16 autoriza);

    // A header row has data in column 0 and none in column 1; a line row, even one whose
    // account is still being typed, carries its key (possibly empty text) in column 1.
    bool EsFilaCabezal(int fila) const;
    bool EsFilaDiferencia(int fila) const;
    bool EsFilaNuevoAsiento(int fila) const;
    // The header row of the entry that fila belongs to; -1 when none.
    int FilaCabezalDe(int fila) const;
    // The last row of the entry whose header is filaCabezal (its difference row included).
    int UltimaFilaAsiento(int filaCabezal) const;
    qint32 IdDeFila(int fila) const;
    // The header row of the entry with that id, or -1 when the grid does not show it.
    int FilaDeAsiento(qint32 asiID) const;

    // Runs sql (the loading query) and puts its entries before row fila (0: at the end).
    // Throws ErrorBaseDatos; the rows written until then stay. Answers the first row filled,
    // -1 when the result was empty.
    int LlenarGrilla(Conexion &conexion, const QString &sql, int fila);
    // Adds at the end of the grid the entries of the rows rs has left, each put in order and
    // finished as a fill does, at most asientos of them (0: all); the first row of the next
    // entry is left unread. Answers how many entries it added. A long read is written out
    // this way part by part, without the whole of it in memory.
    int LlenarParte(Recordset &rs, int asientos);

    // Balance and order of the current entry.
    void CierreAsiento(bool &bDebeMenor, Importe &cDiferenciaMC, Importe &cDiferenciaME, bool &bCierra);
    // Whether the current entry balances: CierreAsiento's bCierra alone.
    bool Cierra();
    bool FilaDiferencia(int fila, bool insertar);
    bool FormatoEntrada();
    void OrdenarCuentas();

    // The rate the current entry's lines already use for a currency: from the first line kept
    // in it, the amount in pesos over the amount in the currency (or the rate cell when that
    // amount is 0); 0 when no line of that currency is found before the next entry.
    double BuscarTCMonedaCuenta(qint16 iMoneda) const;
    // A line row's rate: accounting units per unit of its currency, as the factor itself
    // (its cell shows it cut to the rate mask).
    double TasaDeFila(int fila) const;

    // The line of a grid row as the editor and the storage take it.
    RegistroLinea LineaDeFila(int fila) const;
    // The current entry's lines as stored: every line row in grid order, the difference row
    // left out; monedas receives each line's currency.
    QVector<LineaDatos> LineasParaGrabar(QVector<qint16> *monedas = nullptr) const;
    // After a write: the header row takes the new stamp and state, and the state's picture.
    void ActualizarCabezalFila(int filaCabezal, const QDateTime &sello, qint16 estado);
    // Removes every row of the entry with that id (header, lines, difference row).
    void QuitarAsientoDeGrilla(qint32 asiID);

    // Brings every foreign currency of the current entry to one rate: the sum of its lines'
    // accounting-currency amounts over the sum of their own amounts, over the lines with an
    // amount in their currency. That average, a factor as AplicarTasa takes it (41.5 for
    // dollars, 0.25 for a currency worth a quarter), goes to AplicarTasa(false, ...): each
    // line keeps its own amount; its accounting-currency amount and rate are written anew.
    void PromediarTasas();
    // The lines of currency moneda at one rate.
    // tasa is a factor: units of the accounting currency per unit of moneda, the meaning of
    // RegistroLinea::dTCambio and of the grid's rate cell: 41 for a dollar at 41 pesos, 0.25
    // for a yen at a quarter of a peso. It is applied as the line editor applies a rate:
    // a factor of 1 or more as itself with "*", a factor below 1 as its
    // reciprocal with "/" (0.25 as "/ 4"). So a rate as the user sees it, R with "/", is
    // passed as 1 / R, and R with "*" as R; a factor that is 1 / R but for floating-point
    // noise is applied as exactly "/ R".
    // bMonedaCuenta true ("to the account's currency") keeps each line's accounting-currency
    // amount and recomputes its own amount; false ("to the accounting currency") keeps its own
    // amount and recomputes the other; the result is rounded to that currency's amount mask.
    // The rate cell gets the factor whose shown form ("*" tasa or "/" 1 / tasa) is cut to
    // moneda's rate mask. Lines with no amount in moneda (exchange differences) are left as
    // they are. Nothing happens when tasa is not above 0. Answers how many lines changed.
    int AplicarTasa(bool bMonedaCuenta, double tasa, qint16 moneda);

    // Takes the entry whose header is at fila as the current entry.
    void TomarAsientoDeFila(int fila);
    // Removes the current entry's rows from the grid; nothing changes in the database.
    void QuitarAsientoDeGrilla();

private:
    int anchoRelleno();
    bool tieneTexto(int fila, int columna) const;
    QString mascaraImporte(qint16 moneda);
    // The decimals a mask shows, looked up once per mask; -1 for a mask with no digit
    // characters (a blank one), which shows every decimal there is.
    const Mascara &mascaraLeida(const QString &mascara);

    Grilla &m_g;
    ContextoAsientos &m_ctx;
    int m_relleno = -1;
    QFont m_fuenteRelleno;
    QHash<QString, Mascara> m_mascaras; // each mask met, read once
    struct FechaEscrita
    {
        QDate fecha;
        QString formato;
        QLocale locale;
        QString texto;
    } m_fechaEscrita; // the last header date written, in the format it was written in
};
