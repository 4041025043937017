#pragma once

#include "asientodatos.h"
#include "reglabalance.h"

#include "store/conexion.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QString>
#include <QVector>

#include <functional>
#include <optional>

// A frequent entry: a template of an entry's header and lines that the user registers again
// and again. A scheduled one carries a recurrence and the date it is next due.
struct MovimientoFrecuente
{
    qint32 MFrID = 0; // 0 or below: not stored yet
    qint32 Empresa = 0;
    QString Nombre;
    QString Recurrencia; // empty: not scheduled
    QDate FechaProxima;  // a scheduled entry's next date
    QDate Fecha;         // the date of the entry it was made from
    QString Leyenda;
    qint16 Libro = 0;
    qint16 Autoriza = 0;
    qint16 Usuario = 0;
    QVector<LineaDatos> Lineas; // in their order
    QVector<qint16> Monedas;    // each line's currency; 0: the accounting currency

    bool Agendado() const { return !Recurrencia.isEmpty(); }
    // The entries' balance test over the template's lines.
    ResultadoBalance Balance(qint16 monedaContabilidad, CatalogoMonedas &monedas) const;
};

// Frequent entries in genMovimientosFrecuentes and their lines. A scheduled one is stored as
// "mensual" with the entry's date as its next date: the entry comes back every month from
// that date on. Every write is one transaction and answers why it failed (told with the
// command's own text), nothing when it was written; reads throw ErrorBaseDatos.
class FrecuentesDatos
{
public:
    static constexpr const char *kRecurrenciaAgendado = "mensual";

    // texto: the catalogue, in the user's language, for the details of refusals; without it
    // a detail is the number of its text.
    explicit FrecuentesDatos(Conexion &conexion, std::function<QString(int)> texto = {});

    // Stores a template from an entry's header and lines (in their order); its MFrID goes
    // into mfrID (0 on failure). A scheduled one is first due on the entry's date, or with
    // desdeElMesSiguiente a month later.
    [[nodiscard]] std::optional<Fallo> Crear(const CabezalDatos &cabezal, const QVector<LineaDatos> &lineas,
                                             const QVector<qint16> &monedas, bool agendar, const QString &nombre,
                                             bool desdeElMesSiguiente, qint32 &mfrID);
    // Stores a new template (MFrID 0, which then holds the new id) or replaces a stored
    // one's header and lines. A failed write leaves m as it was.
    [[nodiscard]] std::optional<Fallo> Guardar(MovimientoFrecuente &m);
    [[nodiscard]] std::optional<Fallo> Eliminar(qint32 mfrID);

    // The reads answer a failure of the database with text 0, for the caller to tell with
    // its own text.
    // The template with its lines; none when there is no such template.
    Resultado<std::optional<MovimientoFrecuente>> Leer(qint32 mfrID);
    // The company's templates (headers only) whose name holds texto (case ignored; all for
    // an empty texto), by name.
    Resultado<QVector<MovimientoFrecuente>> Buscar(qint32 empresa, const QString &texto);
    // The company's scheduled templates due on or before hoy, oldest first.
    Resultado<QVector<MovimientoFrecuente>> Vencidos(qint32 empresa, const QDate &hoy);
    // The names of those of ids that are the company's and not scheduled, by id.
    Resultado<QHash<qint32, QString>> NombresSinAgenda(const QList<qint32> &ids, qint32 empresa);

    // Writes an entry from the template, dated fecha: registered (or a draft, with
    // borrador, or dated after today) when it balances, incomplete otherwise. A scheduled template then moves its
    // next date one month on, in the same transaction and only from the date read, so a due
    // date is never registered twice. Refused when an account is closed at fecha. The entry's
    // AsiID goes into asiID (0 on failure, with nothing written).
    [[nodiscard]] std::optional<Fallo> Registrar(const MovimientoFrecuente &m, const QDate &fecha, qint16 usuario,
                                                 const LibrosSistema &libros, bool borrador, qint32 &asiID);

    // A scheduled template's next date after the one due: a month on, on the day it began.
    static QDate SiguienteFecha(const MovimientoFrecuente &m);

private:
    std::optional<MovimientoFrecuente> leer(qint32 mfrID);
    QVector<MovimientoFrecuente> buscar(qint32 empresa, const QString &texto);
    QVector<MovimientoFrecuente> vencidos(qint32 empresa, const QDate &hoy);
    void escribirLineas(const MovimientoFrecuente &m);
    MovimientoFrecuente cabezalDe(Recordset &rs) const;

    QString texto(int numero) const { return m_texto ? m_texto(numero) : QString::number(numero); }

    Conexion &m_conexion;
    std::function<QString(int)> m_texto;
};
