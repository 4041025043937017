#pragma once

#include "editing/datosdocumento.h"
#include "entries/asientosgrilla.h"

#include <QHash>
#include <QObject>
#include <QTimer>

#include <functional>
#include <utility>

// Marks, in the grid, the entries that another session wrote after the grid read them: the
// header row's state picture becomes kImagen and its tooltip says who and when. PostgreSQL
// tells of every write at once (a notice sent with the write); on SQLite the stamps of the
// entries on screen are compared with the stored ones every kIntervaloMs (on PostgreSQL
// too, every kIntervaloConAvisosMs, for what the notices could not bring). An entry opened
// for editing is read again first (ComandosAsiento::ReleerSiCambio), which clears its mark.
class CambiosAjenos : public QObject
{
    Q_OBJECT
public:
    using FilasVisibles = std::function<std::pair<int, int>()>;

    static constexpr int kIntervaloMs = 1000;
    static constexpr int kIntervaloConAvisosMs = 10000;
    static constexpr const char *kImagen = "modificado";

    CambiosAjenos(DatosDocumento &datos, AsientosGrilla &asientos, FilasVisibles filasVisibles, QObject *padre = nullptr);

    // Starts following other sessions' writes; call once the connection is open.
    void Iniciar();
    // Compares the given header rows (all entries on screen when none are given) with the
    // store and marks those written by someone else. Answers how many it marked.
    int Revisar(QList<int> cabezales = {});
    // The tooltip of a marked header row; empty for any other row.
    QString Aviso(int fila) const;

private:
    void recibir(const QString &carga);
    Resultado<QString> textoAviso(qint32 id, bool existe, qint16 estado) const;

    DatosDocumento &m_datos;
    AsientosGrilla &m_asientos;
    FilasVisibles m_filasVisibles;
    QTimer m_sondeo;
    QHash<qint32, QString> m_avisos;
};
