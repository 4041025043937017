#include "consultabusqueda.h"

#include "entries/vistas.h"
#include "store/valoressql.h"

namespace {

QDate fechaDeTexto(const QString &texto)
{
    return QDate::fromString(texto.trimmed(), Qt::ISODate);
}

// The amount condition over the sub-select's lines: a range, or one bound.
QString condicionImporte(const CriteriosBusqueda &c)
{
    if (c.prmImporte != 0 && c.prmImporte2 != 0)
        return QStringLiteral("CSQ.ACuImporteMC between ") + NumeroSQL(c.prmImporte) + QStringLiteral(" And ")
             + NumeroSQL(c.prmImporte2);
    return QStringLiteral("CSQ.ACuImporteMC ") + (c.prmImporte != 0 ? QStringLiteral(">= ") : QStringLiteral("<= "))
         + NumeroSQL(c.prmImporte != 0 ? c.prmImporte : c.prmImporte2);
}

} // namespace

std::optional<Fallo> SqlBusqueda(const CriteriosBusqueda &c, qint32 empresa, const QString &delimitadorFecha,
                                 const QString &patronFecha, QString &sql)
{
    sql.clear();
    for (const QString &texto : {c.prmFInit, c.prmFEnd}) {
        if (!texto.isEmpty() && !fechaDeTexto(texto).isValid())
            return Fallo{1927, QStringLiteral("La fecha \"%1\" no es una fecha.").arg(texto)};
    }
    sql = QStringLiteral("Select * ") + DesdeAsientos() + QStringLiteral(" Where AsiEmpresa = ") + QString::number(empresa);
    switch (c.prmEstado) {
    case 0: sql += QStringLiteral(" And AsiEstado <> 9 "); break;
    case 1: sql += QStringLiteral(" And AsiEstado = 0"); break;
    case 2: sql += QStringLiteral(" And AsiEstado = 2"); break;
    case 3: sql += QStringLiteral(" And AsiEstado = 1"); break;
    default: break;
    }

    bool abierto = false;
    // The first criterion opens the group; the next ones are joined as the user chose.
    auto conector = [&] {
        if (!abierto) {
            abierto = true;
            return QStringLiteral(" And (");
        }
        return c.prmCriterioAnd ? QStringLiteral(" And ") : QStringLiteral(" Or ");
    };
    auto fecha = [&](const QString &texto) { return FechaSQL(fechaDeTexto(texto), delimitadorFecha, patronFecha); };

    const bool desde = !c.prmFInit.isEmpty();
    const bool hasta = !c.prmFEnd.isEmpty();
    if (desde && hasta) {
        sql += QStringLiteral(" And (AsiFechaAsiento BetWeen ") + fecha(c.prmFInit) + QStringLiteral(" And ") + fecha(c.prmFEnd);
        abierto = true;
    } else if (desde || hasta) {
        sql += QStringLiteral(" And (AsiFechaAsiento ") + (desde ? QStringLiteral(" >= ") : QStringLiteral("<= "))
             + fecha(desde ? c.prmFInit : c.prmFEnd);
        abierto = true;
    }

    const bool hayImporte = c.prmImporte != 0 || c.prmImporte2 != 0;
    const QString subconsulta = QStringLiteral("cceAsientoCuenta.ACuIDAsiento IN (Select ACuIDAsiento From cceAsientoCuenta As CSQ ");
    if (c.prmCta >= 1) {
        // A project or department not chosen restricts nothing: the account's lines of every
        // project and department count.
        sql += conector() + subconsulta + QStringLiteral(" Where (CSQ.AcuCuenta = ") + QString::number(c.prmCta);
        if (c.prmPry != CriteriosBusqueda::kCualquiera)
            sql += QStringLiteral(" And CSQ.AcuProyecto = ") + QString::number(c.prmPry);
        if (c.prmDep != CriteriosBusqueda::kCualquiera)
            sql += QStringLiteral(" And CSQ.AcuDepartamento = ") + QString::number(c.prmDep);
        sql += QStringLiteral(")");
        if (c.prmImporte != 0 && c.prmImporte2 != 0)
            sql += (c.prmCriterioAnd ? QStringLiteral(" And (") : QStringLiteral(" Or (")) + condicionImporte(c) + QStringLiteral(")");
        else if (hayImporte)
            sql += (c.prmCriterioAnd ? QStringLiteral(" And ") : QStringLiteral(" Or ")) + condicionImporte(c);
        sql += QStringLiteral(")");
    } else if (hayImporte) {
        sql += conector() + subconsulta + QStringLiteral(" Where ") + condicionImporte(c) + QStringLiteral(")");
    }

    if (!c.prmLeyenda.isEmpty()) {
        // "%" and "_" typed in the legend are themselves, as is "\" (PostgreSQL's default
        // escape): they are escaped, and only then does the pattern say so.
        QString patron = c.prmLeyenda;
        const bool escapar = patron.contains(QLatin1Char('%')) || patron.contains(QLatin1Char('_')) || patron.contains(QLatin1Char('\\'));
        if (escapar) {
            patron.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
            patron.replace(QLatin1Char('%'), QStringLiteral("\\%"));
            patron.replace(QLatin1Char('_'), QStringLiteral("\\_"));
        }
        patron.replace(QLatin1Char('*'), QLatin1Char('%'));
        patron.replace(QLatin1Char('\''), QStringLiteral("''"));
        sql += conector() + QStringLiteral("AsiLeyenda Like '") + patron + QStringLiteral("%'");
        if (escapar)
            sql += QStringLiteral(" ESCAPE '\\'");
    }
    if (c.prmLibro > 0)
        sql += conector() + QStringLiteral("AsiTipo = ") + QString::number(c.prmLibro);
    if (abierto)
        sql += QStringLiteral(")");
    sql += QStringLiteral(" Order By AsiFechaAsiento, AsiID, AcuDebe desc, CueCodigo");
    return std::nullopt;
}
