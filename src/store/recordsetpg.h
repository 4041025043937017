#pragma once

#include "conexion.h"

#include <QStringList>

#include <deque>
#include <functional>
#include <memory>

typedef struct pg_conn PGconn;
typedef struct pg_result PGresult;

// A forward-only result read straight from libpq under Qt's PostgreSQL connection (the handle
// QSqlDriver::handle() gives). Rows stream in one at a time as the server sends them; a column
// becomes a QVariant only when it is asked for, typed as the Qt driver types it (numeric as
// exact text), and the typed reads by position take the value from the engine's text without
// any QVariant.
//
// While rows are streaming the connection can run nothing else: whoever sends another
// statement on it first calls Soltar() on the open reader (through the Turno the connection
// and its readers share), which reads the rest of the rows into memory.
class RecordsetPG final : public Recordset
{
public:
    // Who holds the connection's line: the reader whose rows are still coming, if any.
    struct Turno
    {
        RecordsetPG *lector = nullptr;
        // Called when a reader may have taken notices (LISTEN/NOTIFY) off the socket with its
        // rows: the driver, which hands them over, must be told to look.
        std::function<void()> avisos;
        // Lets the line go: the reader holding it reads its remaining rows into memory.
        void Liberar();
    };

    // Why a statement was refused: the engine's code (SQLSTATE, empty when the server could
    // not be reached) and its message.
    struct Rechazo
    {
        QString codigo;
        QString texto;
        bool sinConexion = false;
    };

    // The handle behind a Qt SQL driver, or null when the driver is not PostgreSQL's.
    static PGconn *Manejador(const QVariant &manejador);

    // Sends sql with valores bound as the Qt driver binds them and reads the first row. Answers
    // null and fills rechazo when the engine refuses it. turno must be free (Liberar) first.
    static std::unique_ptr<RecordsetPG> Enviar(PGconn *conexion, std::shared_ptr<Turno> turno, const QString &sql,
                                               const QVariantList &valores, int esperaMs, Rechazo &rechazo);

    // The error the program reports for what the engine said: lock waits, deadlocks and
    // serialization failures are a busy database, a read-only session takes no writes.
    static ErrorBaseDatos ErrorDe(const QString &codigo, const QString &texto, int esperaMs);

    ~RecordsetPG() override;
    RecordsetPG(const RecordsetPG &) = delete;
    RecordsetPG &operator=(const RecordsetPG &) = delete;

    bool Fin() const override { return m_fin; }
    void MoverSiguiente() override;
    void Cerrar() override;

    using Recordset::Campo;
    QVariant Campo(int indice) const override;
    bool NuloEn(int indice) const override;
    double NumeroEn(int indice) const override;
    qint64 EnteroEn(int indice) const override;
    // A timestamp is read from the server's text: a stamp marked local time, as Campo gives
    // it, asks the system's zone rules each time (a tenth of a long export).
    QDateTime FechaHoraEn(int indice) const override;
    int CantidadCampos() const override { return int(m_nombres.size()); }
    int IndiceCampo(const QString &nombre) const override { return IndiceEn(m_nombres, nombre); }
    QString NombreCampo(int indice) const override { return m_nombres.value(indice); }

    // Reads the rows still to come into memory and lets the connection go.
    void Soltar();

private:
    RecordsetPG(PGconn *conexion, std::shared_ptr<Turno> turno, int esperaMs);

    // Takes the next result of the statement from the connection; false at its end.
    bool recibir();
    void avanzar();
    // Frees the connection of the statement: its remaining results are read and dropped.
    void terminar();
    // The current row's value in a column: NULL, its text and its length.
    bool nulo(int indice) const;
    const char *valor(int indice) const;
    int largo(int indice) const;
    [[noreturn]] void fallar(PGresult *resultado, bool sinConexion);

    PGconn *m_conexion;
    std::shared_ptr<Turno> m_turno;
    PGresult *m_resultado = nullptr; // the block holding the current row
    int m_fila = 0;
    int m_filas = 0;
    // Rows read ahead when the connection was needed, each in one block: per column its offset
    // in the block (-1 for NULL) and its length, then the values, each ending in '\0'. A row
    // kept as libpq hands it over would take some 4 KiB.
    std::deque<QByteArray> m_guardados;
    QByteArray m_guardada; // the current row when it is one of those
    PGresult *m_error = nullptr;        // an error met while reading ahead, told when reached
    bool m_errorSinConexion = false;    // ... with the session gone
    QStringList m_nombres;
    std::vector<unsigned> m_tipos;
    int m_esperaMs;
    bool m_enCurso = false; // rows still coming from the connection
    bool m_fin = false;
};
