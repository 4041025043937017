#pragma once

#include "fallo.h"
#include "reloj.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

// The database connection the data layer (store, currency, entries, services) reads and
// writes through. Its errors are thrown as ErrorBaseDatos and never leave the data layer:
// every operation a command calls answers them as a Fallo (fallo.h), and the command shows
// its own catalogue message.

enum class Motor { SQLite, PostgreSQL };

class ErrorBaseDatos : public std::runtime_error
{
public:
    // What kind of failure it was, where the caller acts on it: another session holds the
    // rows (nothing was written; trying again later may work), or the server went away.
    enum class Causa { Otra, Ocupada, ConexionPerdida };

    explicit ErrorBaseDatos(const QString &descripcion, int numero = -1, Causa causa = Causa::Otra);

    // Another session held the rows past esperaMs; nothing was written.
    static ErrorBaseDatos Ocupada(int esperaMs);
    // The database or the session takes no writes.
    static ErrorBaseDatos SoloLectura();
    // A read past the last row, or of a column the result does not have.
    static ErrorBaseDatos SinFilaActual();
    static ErrorBaseDatos CampoInexistente(const QString &campo);

    QString descripcion() const { return m_descripcion; }
    int numero() const { return m_numero; }
    Causa causa() const { return m_causa; }

private:
    QString m_descripcion;
    int m_numero = -1;
    Causa m_causa = Causa::Otra;
};

// A forward-only result set: read front to back once.
class Recordset
{
public:
    virtual ~Recordset() = default;

    virtual bool Fin() const = 0;
    virtual void MoverSiguiente() = 0;
    virtual void Cerrar() = 0;

    // Column by name (case ignored) or by position; a NULL comes back as a null QVariant.
    // An unknown column is an error.
    virtual QVariant Campo(const QString &nombre) const;
    virtual QVariant Campo(int indice) const = 0;
    virtual int CantidadCampos() const = 0;
    // Position of a column (case ignored), -1 when there is none; a loop over many rows
    // looks its columns up once and reads them by position.
    virtual int IndiceCampo(const QString &nombre) const = 0;
    // The name of a column as the engine gives it.
    virtual QString NombreCampo(int indice) const = 0;

    bool EsNulo(const QString &nombre) const { return Campo(nombre).isNull(); }

    // Reads by position for loops over many rows, making no QVariant where the engine hands
    // the value over as it is. A NULL reads as 0; a number held as text (PostgreSQL's
    // numeric) is read from it; an integer read from a fraction is rounded.
    virtual bool NuloEn(int indice) const { return Campo(indice).isNull(); }
    virtual double NumeroEn(int indice) const;
    virtual qint64 EnteroEn(int indice) const;
    // A stamp by position as FechaHoraDeValor reads it (wall-clock time marked Qt::UTC; invalid
    // for NULL), without the driver's local-time stamp in between where the engine allows.
    virtual QDateTime FechaHoraEn(int indice) const;

    // Typed reads that give the same C++ type on both engines. Reading NULL into one of
    // them is an error, as reading a NULL into a typed variable is in the suite.
    QString Texto(const QString &nombre) const;
    qint64 Entero(const QString &nombre) const;
    double Numero(const QString &nombre) const;
    QDate Fecha(const QString &nombre) const;
    QDateTime FechaHora(const QString &nombre) const;

protected:
    // Refuses a read with no current row (3021) or of a column out of range (3265).
    void ComprobarFila(bool fin, int indice) const;
    // The position of nombre among the columns' names, case ignored; -1 when absent.
    static int IndiceEn(const QStringList &nombres, const QString &nombre);
};

class Conexion
{
public:
    virtual ~Conexion() = default;

    virtual Motor motor() const = 0;
    virtual bool abierta() const = 0;

    // SQL in the suite's dialect; the connection adapts it to its engine before sending.
    virtual std::unique_ptr<Recordset> Abrir(const QString &sql, const QVariantList &valores = {}) = 0;
    // Runs a statement without rows; answers the number of rows it touched.
    virtual int Ejecutar(const QString &sql, const QVariantList &valores = {}) = 0;
    // Runs an INSERT and answers the id the engine gave the new row (column columnaId).
    virtual qint64 Insertar(const QString &sql, const QVariantList &valores, const QString &columnaId) = 0;

    // Transactions nest: a transaction begun inside another is a savepoint of it, confirmed
    // or undone on its own, and written only when the outermost one is confirmed.
    virtual void Comenzar() = 0;
    virtual void Confirmar() = 0;
    virtual void Deshacer() = 0;
    virtual void Cerrar() = 0;

    // Live notices between sessions (PostgreSQL LISTEN/NOTIFY). Escuchar calls aviso with
    // the payload of every notice another session sends on the channel, from the event
    // loop; answers false where the engine has no notices. Avisar sends one as part of the
    // current transaction: it reaches the listeners only if the transaction is confirmed.
    virtual bool Escuchar(const QString &canal, std::function<void(const QString &carga)> aviso)
    {
        Q_UNUSED(canal)
        Q_UNUSED(aviso)
        return false;
    }
    virtual void Avisar(const QString &canal, const QString &carga)
    {
        Q_UNUSED(canal)
        Q_UNUSED(carga)
    }

    // The clock whatever works over this connection reads "today" and "now" from: the
    // system's unless another is handed in (the process's, or a test's fixed one).
    const Reloj &reloj() const { return *m_reloj; }
    std::shared_ptr<Reloj> relojCompartido() const { return m_reloj; }
    void UsarReloj(std::shared_ptr<Reloj> reloj)
    {
        if (reloj)
            m_reloj = std::move(reloj);
    }

    // Values to bind for date and stamp columns, in the form the engine stores them.
    static QVariant ValorFecha(const QDate &fecha);
    static QVariant ValorFechaHora(const QDateTime &momento);

    // The audit rows of the writes made through this connection in this session, oldest
    // first: what the session can undo. A row of a write that was rolled back stays listed
    // until someone looks for it and does not find it.
    QList<qint64> &escrituras() { return m_escrituras; }

private:
    std::shared_ptr<Reloj> m_reloj = std::make_shared<Reloj>();
    QList<qint64> m_escrituras;
};

// Rolls back unless Confirmar() was called: a write either happens whole or not at all.
class Transaccion
{
public:
    explicit Transaccion(Conexion &conexion);
    ~Transaccion();
    Transaccion(const Transaccion &) = delete;
    Transaccion &operator=(const Transaccion &) = delete;

    void Confirmar();

private:
    Conexion &m_conexion;
    bool m_terminada = false;
};

// Reads a date from what a driver hands back: a QDate, a QDateTime or ISO text.
// Stamps are wall-clock times as the database stores them (no zone); they come back in a
// QDateTime marked Qt::UTC so that no local time-zone rule is ever applied to them.
QDate FechaDeValor(const QVariant &valor);
QDateTime FechaHoraDeValor(const QVariant &valor);

// Multi-row INSERTs with bound values, a hundred rows per statement: one round trip per
// hundred rows. columnas is the column list as written in the statement ("A, B, C").
void InsertarEnBloques(Conexion &conexion, const char *tabla, const char *columnas, const QList<QVariantList> &filas);

// Runs pasos in one transaction: confirmed when they answer true, undone when they answer
// false (they have told why). A failure of the database undoes it and is answered as a Fallo
// with text 0, for the caller to tell with its own text.
Resultado<bool> EnTransaccion(Conexion &conexion, const std::function<bool()> &pasos);

// Runs a piece of the data layer that may fail on the database and answers its value as a
// Resultado, or nothing as std::optional<Fallo> when it answers nothing; a failure carries
// numeroTexto (0: the caller tells it with its own text). The one place that turns the
// connection's exceptions into results, so the data functions write no try/catch.
template<class F>
auto Intentar(F &&hacer, int numeroTexto = 0)
{
    using T = std::invoke_result_t<F>;
    try {
        if constexpr (std::is_void_v<T>) {
            std::forward<F>(hacer)();
            return std::optional<Fallo>();
        } else {
            return Resultado<T>(std::forward<F>(hacer)());
        }
    } catch (const ErrorBaseDatos &e) {
        if constexpr (std::is_void_v<T>)
            return std::optional<Fallo>(FalloDe(numeroTexto, e));
        else
            return Resultado<T>(FalloDe(numeroTexto, e));
    }
}
