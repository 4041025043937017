#pragma once

#include "asientosgrilla.h"

#include <QDate>
#include <QLocale>
#include <QString>
#include <QVector>

#include <memory>
#include <optional>

// Which entries the grid shows: the views, their SQL, and the loading of one entry by id.
namespace Vista {
constexpr int kEnEdicion = -2;
constexpr int kPersonalizada = -1;
constexpr int kRecienIngresados = 0;
constexpr int kUltimos5 = 1;
constexpr int kUltimos10 = 2;
constexpr int kHoy = 3;
constexpr int kUltimos15Dias = 4;
constexpr int kPrimerMes = 10;   // 10 + i: month item i (0 = this month)
constexpr int kCantidadMeses = 12;
} // namespace Vista

// " From (((((cceAsientos INNER JOIN ..." : the loading query's joins.
QString DesdeAsientos();
// The query of one entry (or a list of ids, "1,2,3") with its company and trash filters.
QString SqlAsientoEnGrilla(qint32 id, const QString &listaIDs, const ContextoAsientos &ctx);
// The query of a view (1 to 4, or 10 and above with the month's first day); empty for the
// views that query nothing.
QString SqlVista(int vista, const QDate &hoy, const QDate &primerDiaMes, const ContextoAsientos &ctx);

// The caption of the view link: "Ver : name" (the month as "Mmmm yyyy").
QString CaptionVista(int vista, const QDate &primerDiaMes, const std::function<QString(int)> &texto,
                     const QLocale &locale = QLocale());
QString NombreMes(const QDate &d, const QLocale &locale = QLocale());

struct MesDelMenu
{
    QDate primerDia;
    QString caption;
};
// The twelve months of the view menu, this month first; a month whose last day is before
// the earliest account closing date is marked "(cerrado)".
QVector<MesDelMenu> MesesDelMenu(const QDate &hoy, const QDate &menorCierre,
                                 const std::function<QString(int)> &texto, const QLocale &locale = QLocale());
// "Select Min(CueFechaCerrada) From cceCuentas": the earliest closing date, invalid when none.
// A failure of the database carries text 0.
Resultado<QDate> MenorFechaCierre(Conexion &conexion);

// Loads one entry (or a list) before row fila (0: at the end). On a database error: 1916.
std::optional<Fallo> CargarAsientoEnGrilla(AsientosGrilla &a, Conexion &conexion, qint32 id, int fila,
                                           const QString &listaIDs = {});
// Loads a view; sql only for view -1. On a database error: 1917. filaElegida receives the
// row to select afterwards (-1: none).
std::optional<Fallo> CargarAsientos(AsientosGrilla &a, Conexion &conexion, int vista, const QString &sql,
                                    const QDate &hoy, const QDate &primerDiaMes, int *filaElegida = nullptr);
// View 0 on a grid with rows: keeps entries never stored and drafts, drops the others.
void ReducirARecienIngresados(AsientosGrilla &a);

// The entries of a statement read a part at a time into the grid, for an export that writes
// them as it reads: the grid holds one part at a time. A failure of the database carries
// text 0, for the caller to tell with its own text.
class LecturaPorPartes
{
public:
    LecturaPorPartes(AsientosGrilla &asientos, Conexion &conexion);
    // Runs the statement; its rows are read by the parts.
    [[nodiscard]] std::optional<Fallo> Empezar(const QString &sql);
    // Puts the next part (at most asientos entries) in the grid, below its fixed rows, in
    // place of the last one; answers how many entries it put.
    Resultado<int> Siguiente(int asientos);

private:
    AsientosGrilla &m_asientos;
    Conexion &m_conexion;
    std::unique_ptr<Recordset> m_rs;
};
