#pragma once

#include "entries/reglabalance.h"
#include "store/conexion.h"
#include "store/fallo.h"

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>

// Characters the legend column holds (AsiLeyenda, MFrLeyenda) on every engine.
inline constexpr int kLargoLeyenda = 255;

// The header of a stored entry as the data service reads and writes it.
struct CabezalDatos
{
    qint32 AsiID = 0;                 // 0 or below: not stored yet
    qint32 Empresa = 0;
    qint16 Estado = 0;
    QDate Fecha;
    QString Leyenda;
    qint16 Libro = 0;                 // AsiTipo; 0 = none
    qint16 Autoriza = 0;              // AsiUsuarioVerificador; 0 = none
    QDateTime FechaModificado;        // the stamp as read (the one the next write must find)
    QDateTime FechaCambioEstado;
    qint16 Usuario = 0;
};

// One line as stored.
struct LineaDatos
{
    qint32 Cuenta = 0;
    qint16 Proyecto = 0;
    qint16 Departamento = 0;
    bool AlDebe = true;
    ::Importe Importe;                // in the account's currency
    double Tasa = 0;
    ::Importe ImporteMC;              // in the accounting currency
    qint16 Orden = 0;                 // ACuOrden: the line's place in the order of entry; 0 = next
};

// The books the system keeps for its own entries.
struct LibrosSistema
{
    qint16 resumen = 0;
    qint16 apertura = 0;
    qint16 cierre = 0;
    qint16 adc = 0;
    qint16 primeraApertura = 0;

    // Whether a book is one of these (0, no book, is none).
    bool EsDelSistema(qint16 libro) const
    {
        return libro != 0 && (libro == resumen || libro == apertura || libro == cierre || libro == adc || libro == primeraApertura);
    }
};

// An account as the lists show it ("code - name", or the name alone); its id as text when
// there is no such account. A failure of the database carries text 0, here and in the reads
// below: the caller tells it with its own text.
Resultado<QString> TextoDeCuenta(Conexion &conexion, qint32 cuenta, bool mostrarCodigo);

// An entry's state and stamp as stored now, against which a copy read earlier is checked.
struct SelloGuardado
{
    bool existe = false;
    qint16 estado = 0;
    QDateTime sello;
    // Whether a copy read with the stamp leido still is the entry as stored: not written
    // since, not deleted, not in the trash.
    bool Vigente(const QDateTime &leido) const;
};
// The stored state and stamp of each entry asked for; an entry that no longer exists is left
// out (its SelloGuardado is the default one).
Resultado<QHash<qint32, SelloGuardado>> LeerSellos(Conexion &conexion, const QList<qint32> &ids);

// Whether the entry is verified (AsiVerificado 1 or 2): its authoriser may not change.
Resultado<bool> AsientoVerificado(Conexion &conexion, qint32 asiID);

// The entry data service: every write of an entry goes through here, and here the books'
// rules hold whatever command writes. A write is one transaction, header and lines together
// or nothing, and it is a compare-and-set on the modification stamp: the update (or the
// deletion) names the stamp that was read, and when no row matches the write is refused
// (kModificado) and nothing is written. Two users racing can never both win. Inside the same
// transaction, once written, the entry is checked as stored:
// - a registered entry balances (CalcularBalance over its stored lines, the accounts'
//   currencies and masks): else kDescuadrado;
// - the company keeps one opening-balance entry: an entry that comes into the
//   opening-balance book beside another one out of the trash, or is registered there beside
//   another registered one, is refused (kAperturaDuplicada). The check runs under a lock on
//   the company (the write lock of SQLite, a row lock on PostgreSQL), so two sessions cannot
//   both pass it;
// - every amount is one the store keeps exactly, up to Importe::MaximoLinea() (kFueraDeRango).
// A refused write leaves both tables as they were. Each write also leaves its row in the
// audit trail and its live notice to other sessions, in the same transaction.
class CatalogoMonedas;

class AsientoDatos
{
public:
    // What a refused write tells the user, by the catalogue: the stamp was not the one read,
    // a registered entry does not balance, a second opening-balance entry, an amount out of
    // range, an account closed at the date. Other failures (no such entry, a legend too long,
    // the database) carry 0 and are told with the command's own text and the detail.
    static constexpr int kModificado = 1820;
    static constexpr int kDescuadrado = 1957;
    static constexpr int kAperturaDuplicada = 1837;
    static constexpr int kFueraDeRango = 1937;
    static constexpr int kCuentaCerrada = 1962;

    AsientoDatos() = default;
    explicit AsientoDatos(Conexion &conexion, const LibrosSistema &libros = {});

    // The user who makes the writes, for the audit trail; 0: the entry's own user.
    void FijarUsuario(qint16 usuario) { m_usuario = usuario; }
    // The catalogue, in the user's language, for the details of refusals; without it a
    // detail is the number of its text.
    void FijarTextos(std::function<QString(int)> texto) { m_texto = std::move(texto); }

    // Loads the stored header and lines (lines in the order they were entered).
    [[nodiscard]] std::optional<Fallo> CargarAsiento(qint32 asiID);
    CabezalDatos &Cabezal() { return m_cabezal; }
    QVector<LineaDatos> &Lineas() { return m_lineas; }

    // True when an account of the loaded lines is closed at the date (closing date on or
    // after it).
    Resultado<bool> HayCuentasCerradas(const QDate &fecha);
    // The balance test of the loaded lines, with their accounts' currencies and masks as
    // stored, by the rule the write checks.
    Resultado<ResultadoBalance> Balance();

    // How precise a new stamp is: to the millisecond, or in whole seconds (as a change of an
    // entry's book writes it).
    enum class Sello { Milisegundos, SegundosEnteros };

    // Writes the header as it now stands. The stamp written is now (strictly later than the
    // one read) and is kept in Cabezal().FechaModificado afterwards.
    [[nodiscard]] std::optional<Fallo> Grabar(Sello sello = Sello::Milisegundos);
    // Writes header and lines, inserting a new entry; the entry's id is then in
    // Cabezal().AsiID.
    // Each line keeps its ACuOrden; a line without one (0, or a number already taken) gets
    // the next after the highest. Project and department go with each line. Each amount is
    // stored rounded to its currency's amount mask, as the grid shows it.
    [[nodiscard]] std::optional<Fallo> GrabarTodo();
    [[nodiscard]] std::optional<Fallo> GrabarApertura() { return GrabarTodo(); }

    // Sends the entry to the trash when its stamp is still the one given. An entry of the
    // yearly-opening book takes with it the closing entries of the day before it (the
    // closing of the year it opens): they belong together. The ids changed go into
    // cambiados when it is given.
    [[nodiscard]] std::optional<Fallo> EnviarPapelera(qint32 asiID, const QDateTime &sello, QStringList *cambiados = nullptr);
    // Writes a version of the entry as the history keeps it (header and lines) back over the
    // stored entry, when it still carries the stamp read: a write like any other, under the
    // same rules, refused besides when an account is closed at the version's date
    // (kCuentaCerrada) unless the version is in the trash. Its history row is a restoration,
    // or, for deshacer, the undoing of a write.
    [[nodiscard]] std::optional<Fallo> RestaurarVersion(qint32 asiID, const QJsonObject &version, const QDateTime &selloLeido, bool deshacer = false);
    // Deletes header and lines for good, in one transaction, when the entry still carries
    // the stamp read (kModificado otherwise, and nothing is deleted).
    [[nodiscard]] std::optional<Fallo> EliminarDefinitivo(qint32 asiID, const QDateTime &selloLeido);
    // For the opening-balance entry of a company, dated fecha: 1 when exchange-difference
    // entries dated after it exist, 2 when a year closing after it exists, 0 when it may
    // still change.
    Resultado<int> EstadoApertura(const QDate &fecha, qint32 empresa);

    // The stamp for a write that follows one read as anterior: now by the clock, to the
    // millisecond or in whole seconds, and always later than anterior (a whole second later
    // at least, when now is not).
    static QDateTime SelloNuevo(const Reloj &reloj, const QDateTime &anterior, Sello sello = Sello::Milisegundos);

private:
    bool hayCuentasCerradas(const QDate &fecha);
    std::optional<Fallo> actualizarCabezal(qint32 asiID, const QDateTime &nuevo);
    void escribirLineas(qint32 asiID);
    qint16 libroApertura();
    void bloquearEmpresa(qint32 empresa);
    std::optional<Fallo> reglasDelLibro(qint32 asiID, const QJsonObject &antes);
    std::optional<Fallo> importesEnRango() const;
    ResultadoBalance balanceDe(const QVector<LineaBalance> &lineas, qint32 empresa);
    qint16 cargarMonedas(qint32 empresa, CatalogoMonedas &monedas);
    QVector<LineaBalance> lineasConMoneda();
    qint32 empresaDelAsiento();
    void redondearLineas();
    std::optional<Fallo> leyendaAdmitida() const;
    qint16 autor() const { return m_usuario ? m_usuario : m_cabezal.Usuario; }
    QString texto(int numero) const { return m_texto ? m_texto(numero) : QString::number(numero); }

    Conexion *m_conexion = nullptr;
    qint16 m_usuario = 0;
    std::function<QString(int)> m_texto;
    LibrosSistema m_libros;
    CabezalDatos m_cabezal;
    QVector<LineaDatos> m_lineas;
    const char *m_operacion = nullptr; // the history's name for the next write; none: by what it does
};
