#pragma once

#include "store/conexion.h"

#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

// The audit trail of entries: every write of an entry leaves one row, in the same
// transaction as the write, with who made it, when, what kind of write it was, and the
// entry as stored before and after it. Rows are never changed or deleted.
namespace HistorialAsiento {

// Kinds of write, as stored in HisOperacion.
inline constexpr const char *kAlta = "alta";
inline constexpr const char *kCambio = "cambio";
inline constexpr const char *kEstado = "estado";
inline constexpr const char *kPapelera = "papelera";
inline constexpr const char *kEliminacion = "eliminacion";
// An earlier version written back (from the trash or the history), and the undoing of one of
// the session's writes; the undoing is not itself a write the session can undo.
inline constexpr const char *kRestauracion = "restauracion";
inline constexpr const char *kDeshacer = "deshacer";

// Channel of the live notices of writes; the payload is "AsiID|empresa|usuario".
inline constexpr const char *kCanal = "asientos_cambiados";

// The stored entry, header and lines, as a JSON object; empty when there is no such entry.
// Amounts are kept to four decimals, as the columns keep them. Throws ErrorBaseDatos: it is
// read inside the store's own writes; a command reads it through Guardado.
QJsonObject LeerGuardado(Conexion &conexion, qint32 asiID);
// The reads below answer a failure of the database with text 0, for the caller to tell with
// its own text.
Resultado<QJsonObject> Guardado(Conexion &conexion, qint32 asiID);

// Appends the row of one write and sends the live notice; part of the caller's transaction.
// The row is listed among the connection's writes, unless it undoes one.
void Registrar(Conexion &conexion, qint32 asiID, qint16 usuario, const QDateTime &momento, const char *operacion,
               const QJsonObject &antes, const QJsonObject &despues);

// One row as the history shows it.
struct Fila
{
    qint64 id = 0;
    qint32 asiento = 0;
    QDateTime momento;
    qint16 usuario = 0;
    QString nombreUsuario;   // empty when the user is not in segUsuarios
    QString operacion;
    QJsonObject antes, despues;
};

// An entry's history, oldest first.
Resultado<QList<Fila>> Leer(Conexion &conexion, qint32 asiID);

// The last write of an entry, for the "changed by another user" mark; none when the entry
// has no history.
Resultado<std::optional<Fila>> Ultimo(Conexion &conexion, qint32 asiID);

// Catalogue text by its number, in the user's language: the words below come from it.
using Textos = std::function<QString(int)>;

// The kind of a write in words ("Alta", "Cambio", ...); an unknown kind as stored.
QString NombreOperacion(const QString &operacion, const Textos &texto);

// One row by its id; none when there is no such row.
Resultado<std::optional<Fila>> LeerFila(Conexion &conexion, qint64 id);

// One entry of the trash as the trash window lists it.
struct EnPapelera
{
    qint32 asiID = 0;
    QDate fecha;
    QString leyenda;
    QString enviadoPor;      // the user who sent it there; empty when unknown
    QDateTime enviadoEl;
    QDateTime sello;         // the stamp read: a restore or deletion compares it
    QJsonObject antes;       // the entry before it went to the trash; empty when unknown
};
// The company's entries in the trash (state 9), the last sent first, with who sent each there
// and what it was before, from its last history row.
Resultado<QList<EnPapelera>> Papelera(Conexion &conexion, qint32 empresa);

// What changed between before and after, in words: one line per header field that
// changed, and the lines added, removed or changed.
// libros names the books by number; a book it does not name is shown by its number.
QStringList Diferencias(const QJsonObject &antes, const QJsonObject &despues, const Textos &texto,
                        const QHash<int, QString> &libros = {});
// An entry as the history keeps it, in words: one line per header field, then its lines.
QStringList Version(const QJsonObject &asiento, const Textos &texto, const QHash<int, QString> &libros = {});

} // namespace HistorialAsiento
