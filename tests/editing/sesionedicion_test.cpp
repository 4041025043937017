#include "comun/asientosdeprueba.h"
// The rules of editing an entry, driven through a screen of plain values.
#include "documentosinventana.h"

#include "editing/cambiosajenos.h"
#include "editing/restauraciones.h"
#include "editing/sesionedicion.h"

#include <algorithm>
#include <cmath>

namespace {

double Centesimos(double v)
{
    return std::round(v * 100) / 100;
}

class Edicion : public DocumentoSinVentana
{
protected:
    // What the line editor hands over for an account typed by its code: an amount in the
    // account's currency, converted at tasa when that is not the accounting currency.
    ValorLinea cuenta(const char *codigo, double importe, double tasa = 1)
    {
        auto rs = m_base.conexion().Abrir(QStringLiteral("Select * From cceCuentas Where CueCodigo = ?"), {QString::fromLatin1(codigo)});
        ValorLinea v;
        v.lCta = qint32(rs->Entero(QStringLiteral("CueID")));
        const qint16 moneda = qint16(rs->Campo(QStringLiteral("CueMoneda")).toInt());
        v.iMon = moneda > 0 ? moneda : m_datos.empresa.monedaContabilidad; // 0: the accounting currency
        v.sTextDisplay = TextoCuenta(rs->Texto(QStringLiteral("CueCodigo")), rs->Texto(QStringLiteral("CueNombre")), true);
        v.dFechaCierre = rs->EsNulo(QStringLiteral("CueFechaCerrada")) ? QDate(1901, 1, 1) : rs->Fecha(QStringLiteral("CueFechaCerrada"));
        v.dImporte = Importe::DesdeDouble(importe);
        if (v.iMon != m_datos.empresa.monedaContabilidad) {
            v.dTCambio = tasa;
            v.dImporteMC = Importe::DesdeDouble(Centesimos(importe * tasa));
        }
        return v;
    }
    // Starts a new entry on the new-entry row and types its header.
    void nuevo(const QDate &fecha, const QString &leyenda)
    {
        m_vista.fila = m_grilla.Filas() - 1;
        ASSERT_TRUE(m_sesion.EntrarEdicion(m_vista.fila));
        m_vista.cabezal.fecha = fecha;
        m_vista.cabezal.leyenda = leyenda;
    }
    // Types a line, one account or both, and accepts it.
    void teclear(std::optional<ValorLinea> debe, std::optional<ValorLinea> haber = std::nullopt)
    {
        m_vista.debe = debe;
        m_vista.haber = haber;
        m_sesion.AceptarLinea();
    }

    // Every row of the grid, texts and (unless left out) hidden data.
    QStringList grilla(bool datos = true) const
    {
        QStringList filas;
        for (int r = m_grilla.FilasFijas(); r < m_grilla.Filas(); ++r) {
            QStringList celdas;
            for (int c = 0; c < m_grilla.Columnas(); ++c)
                celdas << m_grilla.Texto(r, c) + (datos ? u'#' + m_grilla.Dato(r, c).toString() : QString());
            filas << celdas.join(u'|');
        }
        return filas;
    }

    // The entry whose header row is cabezal as the grid holds it, in enBase's form: its lines
    // by their order, whatever rows they are shown in.
    QStringList enGrilla(int cabezal) const
    {
        QMap<int, QString> lineas;
        for (int r = cabezal + 1; r <= m_asientos.UltimaFilaAsiento(cabezal); ++r) {
            const RegistroLinea x = m_asientos.LineaDeFila(r);
            if (!m_asientos.EsFilaDiferencia(r))
                lineas.insert(x.ACuOrden, QStringList{x.sTextDisplay.section(u' ', 0, 0), x.bEsAlDebe ? QStringLiteral("D") : QStringLiteral("H"),
                                                      NumeroSQL(x.dImporte.aDouble()), NumeroSQL(x.dImporteMC.aDouble()),
                                                      QString::number(x.ACuOrden), QString::number(x.iPry), QString::number(x.iDep)}.join(u'|'));
        }
        return QStringList{QStringList{QString::number(m_asientos.EstadoDeFila(cabezal)), m_grilla.Dato(cabezal, 2).toDate().toString(Qt::ISODate),
                                       m_asientos.LeyendaDeFila(cabezal), QString::number(m_asientos.LibroDeFila(cabezal)),
                                       QString::number(m_asientos.AutorizaDeFila(cabezal))}.join(u'|')}
             + lineas.values();
    }

    // The registered entries none of whose accounts is ever closed.
    QList<qint32> registradosSinCuentasCerradas()
    {
        return ids(QStringLiteral("AsiEstado = 1 And AsiID Not In (Select ACuIDAsiento From cceAsientoCuenta"
                                  " INNER JOIN cceCuentas ON CueID = ACuCuenta Where CueFechaCerrada Is Not Null)"));
    }

    SesionEdicion m_sesion{m_datos, m_asientos, m_comandos, m_vista};
};

const QDate kFecha = BaseDePrueba::Hoy().addDays(-5);
const QString kDia = kFecha.toString(Qt::ISODate);
using R = ServicioMensajes::Respuesta;

TEST_P(Edicion, UnAsientoNuevoQueCierraSeGrabaRegistradoOBorradorYCierraLaEdicion)
{
    for (const bool borradores : {false, true}) {
        m_datos.asiSaveB = borradores;
        const int cabezal = m_grilla.Filas() - 1;
        nuevo(kFecha, QStringLiteral("  Venta al contado "));
        EXPECT_EQ(m_vista.cabezal.libro, Demo::kLibroDiario); // the company's default book
        teclear(cuenta("1.1.01", 1234.56), cuenta("4.1.01", 1234.56));

        const QStringList escrito{QStringLiteral("%1|%2|Venta al contado|1|0").arg(borradores ? 0 : 1).arg(kDia),
                                  QStringLiteral("1.1.01|D|1234.56|1234.56|1|0|0"), QStringLiteral("4.1.01|H|1234.56|1234.56|2|0|0")};
        EXPECT_EQ(enBase(ultimoId()), escrito);
        EXPECT_EQ(m_sesion.FilaEdicion(), 0);
        EXPECT_EQ(m_vista.cerrada, cabezal);
        // The grid shows the entry as stored, and the new-entry row after it.
        EXPECT_EQ(m_asientos.IdDeFila(cabezal), ultimoId());
        EXPECT_EQ(enGrilla(cabezal), escrito);
        EXPECT_EQ(m_grilla.Texto(cabezal, 4), QStringLiteral("Diario"));
        EXPECT_EQ(m_grilla.Filas(), cabezal + 4);
        EXPECT_TRUE(m_asientos.EsFilaNuevoAsiento(cabezal + 3));
    }
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(u'\n').toStdString();
}

TEST_P(Edicion, UnaLineaQueNoCierraProponeLoQueFaltaYAlSalirQuedaInconclusaODescartada)
{
    const qint32 antes = ultimoId();
    nuevo(kFecha, QStringLiteral("A medias"));
    const int cabezal = m_sesion.FilaEdicion() - 1;
    teclear(cuenta("1.1.01", 500));
    EXPECT_EQ(ultimoId(), antes); // nothing written yet
    EXPECT_EQ(m_sesion.FilaEdicion(), cabezal + 2);
    EXPECT_EQ(m_vista.editores.last(), cabezal + 2);
    EXPECT_EQ(m_vista.diferencia, std::pair(false, 500_imp)); // the credit side lacks 500
    EXPECT_TRUE(m_asientos.EsFilaDiferencia(cabezal + 3));

    teclear(std::nullopt, cuenta("4.1.01", 199.99));
    EXPECT_EQ(m_sesion.FilaEdicion(), cabezal + 3);
    EXPECT_EQ(m_vista.diferencia, std::pair(false, 300.01_imp));
    EXPECT_TRUE(m_asientos.EsFilaDiferencia(cabezal + 4));
    // A line that carries both accounts balances itself, not the lines typed before it.
    teclear(cuenta("5.3.01", 100), cuenta("4.1.01", 100));
    EXPECT_EQ(m_sesion.FilaEdicion(), cabezal + 5);
    EXPECT_EQ(m_vista.diferencia, std::pair(false, 300.01_imp));

    m_sesion.SalirEdicion();
    const QStringList escrito{QStringLiteral("2|%1|A medias|1|0").arg(kDia), QStringLiteral("1.1.01|D|500|500|1|0|0"),
                              QStringLiteral("4.1.01|H|199.99|199.99|2|0|0"), QStringLiteral("5.3.01|D|100|100|3|0|0"),
                              QStringLiteral("4.1.01|H|100|100|4|0|0")};
    EXPECT_EQ(enBase(ultimoId()), escrito);
    EXPECT_EQ(m_vista.cerrada, cabezal);
    EXPECT_EQ(enGrilla(cabezal), escrito);
    EXPECT_TRUE(m_asientos.EsFilaDiferencia(cabezal + 5)); // an incomplete entry shows what it lacks

    // A new entry that cannot be written at all: leaving asks (1961), and discarding takes its
    // rows off the grid, which is left as it was before the entry was begun.
    const qint32 ultimoIncompleto = ultimoId();
    const QStringList filasAntes = grilla();
    nuevo(kFecha, QStringLiteral("Sin base"));
    teclear(cuenta("1.1.01", 500));
    teclear(std::nullopt, cuenta("4.1.01", 200));
    ejecutar(QStringLiteral("Alter Table cceAsientosHistorial Rename To historialAparte"));
    m_mensajes.Responder(R::No); // discard
    m_sesion.SalirEdicion();
    ejecutar(QStringLiteral("Alter Table historialAparte Rename To cceAsientosHistorial"));
    EXPECT_EQ(m_mensajes.mostrados.last(), QStringLiteral("pregunta: 1961")) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_EQ(m_sesion.FilaEdicion(), 0);
    EXPECT_EQ(ultimoId(), ultimoIncompleto);
    EXPECT_EQ(grilla(), filasAntes);
}

// A new entry whose date cannot be read, or on which an account typed is closed (the demo's
// closed bank account, on its closing date): nothing is taken and the date has the focus.
// Books that cannot be read are said as that (1910), not as there being none (1828); no edit
// opens, and one opens once they can be read again.
TEST_P(Edicion, LibrosIlegiblesNoSonLibrosQueNoHay1910)
{
    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genLibros Rename To genLibrosAparte"));
    m_vista.fila = m_grilla.Filas() - 1;
    EXPECT_FALSE(m_sesion.EntrarEdicion(m_vista.fila));
    ASSERT_EQ(m_mensajes.mostrados.size(), 1) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_TRUE(m_mensajes.mostrados[0].startsWith(QStringLiteral("error: 1910"))) << m_mensajes.mostrados[0].toStdString();
    EXPECT_EQ(m_sesion.FilaEdicion(), 0);

    m_base.conexion().Ejecutar(QStringLiteral("Alter Table genLibrosAparte Rename To genLibros"));
    m_mensajes.mostrados.clear();
    EXPECT_TRUE(m_sesion.EntrarEdicion(m_vista.fila));
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(u'\n').toStdString();
}

TEST_P(Edicion, UnAsientoNuevoConFechaIlegibleOCuentaCerradaVuelveALaFecha1821YImporteCero1819)
{
    const ValorLinea cerrada = cuenta("1.1.07", 100);
    ASSERT_GT(cerrada.dFechaCierre, QDate(1901, 1, 1));
    nuevo(QDate(), QStringLiteral("Sin fecha"));
    const QStringList filas = grilla();
    teclear(cuenta("1.1.01", 10), cuenta("4.1.01", 10));
    EXPECT_EQ(m_vista.enfoquesFecha, 1);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty());

    m_vista.cabezal.fecha = cerrada.dFechaCierre;
    teclear(cerrada);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1821")});
    EXPECT_EQ(m_vista.enfoquesFecha, 2);
    EXPECT_TRUE(m_vista.fechasFijadas.isEmpty()); // a new entry has no stored date to go back to
    EXPECT_EQ(grilla(), filas);

    // The day after its closing the account is taken, and the entry is stored as any other.
    m_vista.cabezal.fecha = cerrada.dFechaCierre.addDays(1);
    teclear(cerrada, cuenta("4.1.01", 100));
    EXPECT_EQ(m_mensajes.mostrados.size(), 1);
    EXPECT_EQ(m_base.Valor(QStringLiteral("Select Count(*) From cceAsientos Where AsiLeyenda = 'Sin fecha' And AsiEstado = 1")).toInt(), 1);

    // An amount of zero in the account's currency is taken only when confirmed (1819).
    m_mensajes.mostrados.clear();
    m_vista.editores.clear();
    nuevo(kFecha, QStringLiteral("Diferencia de cambio"));
    ValorLinea banco = cuenta("1.1.04", 0, 0);
    banco.dImporteMC = 50_imp;
    const QStringList filasSinBanco = grilla();
    m_mensajes.Responder(R::No);
    teclear(banco);
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1819")});
    EXPECT_EQ(grilla(), filasSinBanco);
    EXPECT_EQ(m_vista.editores.size(), 1);

    m_mensajes.Responder(R::Si);
    teclear(banco);
    teclear(std::nullopt, cuenta("4.2.02", 50));
    EXPECT_EQ(enBase(ultimoId()), (QStringList{QStringLiteral("1|%1|Diferencia de cambio|1|0").arg(kDia),
                                                 QStringLiteral("1.1.04|D|0|50|1|0|0"), QStringLiteral("4.2.02|H|50|50|2|0|0")}));
    EXPECT_EQ(m_mensajes.mostrados.size(), 2);
}

// A stored entry with an account closed at its date: that line may not change (1815); an
// account of another entry closed at the date refuses the date, which goes back (1821).
TEST_P(Edicion, UnaCuentaCerradaEnUnAsientoGuardado1815Y1821)
{
    const QList<qint32> conCerrada = ids(QStringLiteral("AsiEstado = 1 And AsiID In (Select ACuIDAsiento From cceAsientoCuenta"
                                                        " INNER JOIN cceCuentas ON CueID = ACuCuenta Where CueFechaCerrada >= AsiFechaAsiento)"));
    ASSERT_FALSE(conCerrada.isEmpty());
    const qint32 id = conCerrada.first();
    const QStringList antes = enBase(id, true);
    const int cabezal = cargar(id);
    const QDate fecha = m_grilla.Dato(cabezal, 2).toDate();
    int fila = cabezal + 1;
    while (fila < m_asientos.UltimaFilaAsiento(cabezal) && m_asientos.LineaDeFila(fila).dFechaCierre.isEmpty())
        ++fila;
    ASSERT_FALSE(m_asientos.LineaDeFila(fila).dFechaCierre.isEmpty());
    ASSERT_TRUE(m_sesion.EntrarEdicion(fila));
    EXPECT_FALSE(m_vista.cabezal.fechaHabilitada);
    const QStringList filas = grilla();
    m_sesion.AceptarLinea();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1815")});
    EXPECT_EQ(m_vista.enfoquesFecha, 0);

    auto rs = m_base.conexion().Abrir(QStringLiteral("Select CueCodigo From cceCuentas Where CueFechaCerrada >= ? And CueID Not In"
                                                     " (Select ACuCuenta From cceAsientoCuenta Where ACuIDAsiento = ?)"),
                                      {Conexion::ValorFecha(fecha), id});
    ASSERT_FALSE(rs->Fin());
    const QByteArray otra = rs->Texto(QStringLiteral("CueCodigo")).toLatin1();
    rs->Cerrar();
    teclear(cuenta(otra.constData(), 10));
    EXPECT_EQ(m_mensajes.mostrados.value(1), QStringLiteral("error: 1821"));
    EXPECT_EQ(m_vista.fechasFijadas, QList<QDate>{fecha});
    EXPECT_EQ(m_vista.enfoquesFecha, 1);
    EXPECT_EQ(grilla(), filas);
    // Escape asks about the line still typed; no drops it.
    m_mensajes.Responder(R::No);
    m_sesion.SalirEdicion(SesionEdicion::Salida::Escape);
    EXPECT_EQ(m_mensajes.mostrados.last(), QStringLiteral("pregunta: 1956"));
    EXPECT_EQ(enBase(id, true), antes);
}

// Leaving with a line typed that balances the entry: Sí takes it, the entry is stored
// registered, and the edit is over, so whatever was leaving goes on.
TEST_P(Edicion, SalirConUnaLineaQueCierraYSiLaGuardaYTermina1956)
{
    nuevo(kFecha, QStringLiteral("Al salir"));
    teclear(cuenta("1.1.01", 70));
    m_vista.debe = std::nullopt;
    m_vista.haber = cuenta("4.1.01", 70);
    m_mensajes.Responder(R::Si);
    EXPECT_TRUE(m_sesion.SalirEdicion(SesionEdicion::Salida::Escape));
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1956")});
    EXPECT_EQ(m_sesion.FilaEdicion(), 0);
    EXPECT_EQ(cabezal(ultimoId()), QStringLiteral("1|%1|Al salir|1").arg(kDia));
}

// Moving a stored entry to a date on which another of its accounts is closed: the date goes
// back to the stored one.
TEST_P(Edicion, MoverUnAsientoGuardadoAlCierreDeOtraDeSusCuentas1821YCambiarSoloLaLeyenda)
{
    const QList<qint32> simples = registradosSinCuentasCerradas();
    ASSERT_FALSE(simples.isEmpty());
    const qint32 id = simples.last();
    const int fila = cargar(id);
    const QDate fecha = m_grilla.Dato(fila, 2).toDate();
    ASSERT_NE(m_asientos.LineaDeFila(fila + 1).lCta, m_asientos.LineaDeFila(fila + 2).lCta);
    m_base.conexion().Ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = ? Where CueID = ?"),
                               {Conexion::ValorFecha(fecha.addDays(-1)), m_asientos.LineaDeFila(fila + 2).lCta});
    m_comandos.RecargarAsiento(id, fila);
    const QStringList antes = enBase(id, true);

    ASSERT_TRUE(m_sesion.EntrarEdicion(fila));
    EXPECT_EQ(m_sesion.FilaEdicion(), fila + 1);
    m_vista.cabezal.fecha = fecha.addDays(-1);
    m_sesion.AceptarLinea();
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1821")});
    EXPECT_EQ(m_vista.fechasFijadas, QList<QDate>{fecha});
    EXPECT_EQ(m_vista.enfoquesFecha, 1);
    m_sesion.SalirEdicion();
    EXPECT_EQ(enBase(id, true), antes);
    ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = Null Where CueID = ?"), {m_asientos.LineaDeFila(fila + 2).lCta});

    // A line that leaves a stored entry short is kept for later, but a change of its header alone
    // (here the legend) is written at once.
    const qint32 primero = simples.first();
    const QStringList lineasAntes = enBase(primero).mid(1);
    ASSERT_TRUE(m_sesion.EntrarEdicion(cargar(primero)));
    m_vista.cabezal.leyenda = QStringLiteral("Leyenda corregida");
    teclear(cuenta("1.1.01", 987654.32));
    EXPECT_EQ(cabezal(primero).section(u'|', 2, 2), QStringLiteral("Leyenda corregida"));
    EXPECT_EQ(enBase(primero).mid(1), lineasAntes); // the line waits until the edit ends
}

// An account closed by another session after the entry was read, on the entry's date: the
// store refuses to move the entry, as a header alone (1813, the header comes back) or with a
// line (1811), but a change of the legend alone is written. Closed before that date, it
// closes nothing of the entry.
TEST_P(Edicion, UnaCuentaCerradaEnLaFechaImpideMoverElAsiento1813Y1811PeroNoLaLeyenda)
{
    const qint32 id = registradosSinCuentasCerradas().value(0);
    ASSERT_GT(id, 0);
    QDate fecha;
    const auto cerrarTrasLeer = [&] {
        ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = Null Where CueID In"
                                " (Select ACuCuenta From cceAsientoCuenta Where ACuIDAsiento = ?)"), {id});
        const int fila = cargar(id);
        fecha = m_grilla.Dato(fila, 2).toDate();
        ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = ? Where CueID = ?"),
                 {Conexion::ValorFecha(fecha), m_asientos.LineaDeFila(fila + 1).lCta});
        m_mensajes.mostrados.clear();
        return fila;
    };
    ASSERT_TRUE(m_sesion.EntrarEdicion(cerrarTrasLeer()));
    const QStringList antes = enBase(id, true);
    m_vista.cabezal.fecha = fecha.addDays(1);
    m_mensajes.Responder(R::No);
    m_sesion.SalirEdicion();
    EXPECT_EQ(m_mensajes.mostrados, (QStringList{QStringLiteral("error: 1813"), QStringLiteral("pregunta: 1961")}));
    EXPECT_EQ(enBase(id, true), antes);

    ASSERT_TRUE(m_sesion.EntrarEdicion(cerrarTrasLeer()));
    m_vista.cabezal.fecha = fecha.addDays(1);
    m_sesion.AceptarLinea();
    m_mensajes.Responder(R::No);
    m_sesion.SalirEdicion();
    EXPECT_EQ(m_mensajes.mostrados.value(0), QStringLiteral("error: 1811")) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_EQ(enBase(id, true), antes);

    ASSERT_TRUE(m_sesion.EntrarEdicion(cerrarTrasLeer()));
    m_vista.cabezal.leyenda = QStringLiteral("Solo la leyenda");
    m_sesion.SalirEdicion();
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_EQ(cabezal(id).section(u'|', 1, 2), QStringLiteral("%1|Solo la leyenda").arg(fecha.toString(Qt::ISODate)));

    // An account closed before the entry's date closes nothing of it: its date may change.
    const int fila = cerrarTrasLeer();
    ejecutar(QStringLiteral("Update cceCuentas Set CueFechaCerrada = ? Where CueID = ?"),
             {Conexion::ValorFecha(fecha.addDays(-10)), m_asientos.LineaDeFila(fila + 1).lCta});
    ASSERT_TRUE(m_sesion.EntrarEdicion(cargar(id)));
    EXPECT_TRUE(m_vista.cabezal.fechaHabilitada);
    m_vista.cabezal.fecha = fecha.addDays(1);
    m_sesion.SalirEdicion();
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(u'\n').toStdString();
    EXPECT_EQ(cabezal(id).section(u'|', 1, 1), fecha.addDays(1).toString(Qt::ISODate));
}

// 100 dollars at the debit at 40, then 100 at the credit at 42. Question 1832 settles the
// rate: Sí this line's for all, No the average, Cancelar the one in use. Then 1833: Sí keeps
// the pesos and recomputes the dollars, No the other way round.
TEST_P(Edicion, UnaSegundaTasaParaLaMismaMoneda1832)
{
    const struct
    {
        R tasa;
        std::optional<R> mantenerPesos;
        double debe, debeMC, haber, haberMC;
    } casos[] = {
        {R::Si, R::No, 100, 100 * 42.0, 100, 100 * 42.0},
        {R::No, R::No, 100, 100 * (4000 + 4200) / 200.0, 100, 100 * (4000 + 4200) / 200.0},
        {R::Si, R::Si, Centesimos(4000 / 42.0), 4000, 100, 4200},
        {R::Cancelar, std::nullopt, 100, 4000, 100, 4000},
    };
    qint32 anterior = 0; // each entry is typed below the one before, in the same dollars
    for (const auto &caso : casos) {
        SCOPED_TRACE(QStringLiteral("%1 %2").arg(int(caso.tasa)).arg(caso.mantenerPesos ? int(*caso.mantenerPesos) : -1).toStdString());
        m_mensajes.mostrados.clear();
        nuevo(kFecha, QStringLiteral("Tasas"));
        teclear(cuenta("1.1.04", 100, 40));
        m_mensajes.Responder(caso.tasa);
        if (caso.mantenerPesos)
            m_mensajes.Responder(*caso.mantenerPesos);
        teclear(std::nullopt, cuenta("2.1.02", 100, 42));
        m_sesion.SalirEdicion();

        EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1832")}
                                            + (caso.mantenerPesos ? QStringList{QStringLiteral("pregunta: 1833")} : QStringList{}));
        const int estado = caso.debeMC == caso.haberMC ? EstadoAsiento::kRegistrado : EstadoAsiento::kInconcluso;
        EXPECT_EQ(enBase(ultimoId()),
                  (QStringList{QStringLiteral("%1|%2|Tasas|1|0").arg(estado).arg(kDia),
                               QStringLiteral("1.1.04|D|%1|%2|1|0|0").arg(NumeroSQL(caso.debe), NumeroSQL(caso.debeMC)),
                               QStringLiteral("2.1.02|H|%1|%2|2|0|0").arg(NumeroSQL(caso.haber), NumeroSQL(caso.haberMC))}));
        if (anterior)
            EXPECT_EQ(enGrilla(m_asientos.FilaDeAsiento(anterior)), enBase(anterior)) << "the entry above keeps its rates";
        anterior = ultimoId();
    }
}

// A new entry dated after today, scheduled at question 1807, is kept as a scheduled
// frequent entry instead; kept as an entry, it waits as a draft (below).
TEST_P(Edicion, UnAsientoConFechaFuturaPuedeAgendarse1807YDespuesDeHoyEsSegunElReloj)
{
    const QString leyenda = QStringLiteral("Alquiler agendado");
    m_mensajes.Responder(R::Si);
    nuevo(BaseDePrueba::Hoy().addDays(10), leyenda);
    const int cabezal = m_sesion.FilaEdicion() - 1;
    teclear(cuenta("5.3.01", 800), cuenta("1.1.01", 800));
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1807")});
    EXPECT_EQ(m_sesion.FilaEdicion(), 0);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From genMovimientosFrecuentesLineas INNER JOIN genMovimientosFrecuentes"
                                    " ON MFLIDMovimiento = MFrID Where MFrNombre = ?"), {leyenda}), 2);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos Where AsiLeyenda = ?"), {leyenda}), 0);
    EXPECT_EQ(m_grilla.Filas(), cabezal + 1); // only the new-entry row is left
    EXPECT_EQ(m_vista.cerrada, cabezal);

    // A template that cannot be written keeps the entry, as a draft on its rows.
    ejecutar(QStringLiteral("Alter Table genMovimientosFrecuentesLineas Rename To mflFuera"));
    m_mensajes.Responder(R::Si);
    nuevo(BaseDePrueba::Hoy().addDays(10), QStringLiteral("Sin agenda"));
    teclear(cuenta("5.3.01", 800), cuenta("1.1.01", 800));
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos Where AsiLeyenda = 'Sin agenda' And AsiEstado = 0")), 1);
    EXPECT_EQ(m_vista.cerrada, cabezal);

    // "After today" is after the clock's day, across the ends of months and years: an entry
    // dated today is registered without a question; one dated tomorrow asks 1807 and, kept,
    // waits as a draft; a registered entry moved to tomorrow asks again and goes back to draft.
    for (const QDate hoy : {QDate(2028, 2, 29), QDate(2026, 12, 31), QDate(2025, 2, 28)}) {
        SCOPED_TRACE(hoy.toString(Qt::ISODate).toStdString());
        m_base.reloj()->Fijar(QDateTime(hoy, QTime(12, 0)));
        const QString dia = hoy.toString(Qt::ISODate);
        const QString manana = hoy.addDays(1).toString(Qt::ISODate);
        const QStringList lineas{QStringLiteral("5.3.01|D|800|800|1|0|0"), QStringLiteral("1.1.01|H|800|800|2|0|0")};
        m_mensajes.mostrados.clear();

        nuevo(hoy, QStringLiteral("Hoy"));
        teclear(cuenta("5.3.01", 800), cuenta("1.1.01", 800));
        const qint32 deHoy = ultimoId();
        EXPECT_EQ(enBase(deHoy), QStringList{QStringLiteral("1|%1|Hoy|1|0").arg(dia)} + lineas);
        EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(u'\n').toStdString();

        m_mensajes.Responder(R::No);
        nuevo(hoy.addDays(1), QStringLiteral("Mañana"));
        teclear(cuenta("5.3.01", 800), cuenta("1.1.01", 800));
        EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1807")});
        EXPECT_EQ(enBase(ultimoId()), QStringList{QStringLiteral("0|%1|Mañana|1|0").arg(manana)} + lineas);

        m_mensajes.mostrados.clear();
        m_mensajes.Responder(R::No);
        ASSERT_TRUE(m_sesion.EntrarEdicion(cargar(deHoy)));
        m_vista.cabezal.fecha = hoy.addDays(1);
        m_sesion.AceptarLinea();
        m_sesion.SalirEdicion();
        EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("pregunta: 1807")});
        EXPECT_EQ(enBase(deHoy), QStringList{QStringLiteral("0|%1|Hoy|1|0").arg(manana)} + lineas);

        // The header alone changed: a registered entry of yesterday moved to today stays
        // registered; moved on to tomorrow, it goes back to draft.
        nuevo(hoy.addDays(-1), QStringLiteral("Ayer"));
        teclear(cuenta("5.3.01", 800), cuenta("1.1.01", 800));
        const qint32 deAyer = ultimoId();
        for (const auto &[fecha, estado] : {std::pair{hoy, 1}, std::pair{hoy.addDays(1), 0}}) {
            ASSERT_TRUE(m_sesion.EntrarEdicion(cargar(deAyer)));
            m_vista.cabezal.fecha = fecha;
            m_sesion.SalirEdicion();
            EXPECT_EQ(enBase(deAyer).value(0), QStringLiteral("%1|%2|Ayer|1|0").arg(estado).arg(fecha.toString(Qt::ISODate)));
        }
    }
}

// Every demo entry, opened on its header row and its first line accepted as loaded, is
// stored as it was; refusals write nothing.
TEST_P(Edicion, CadaAsientoDeLaDemoAbiertoYAceptadoSinCambiosQuedaIgual)
{
    const QList<qint32> todos = ids(QStringLiteral("AsiEstado <> 9"));
    ASSERT_GT(todos.size(), 100);
    int escritos = 0;
    auto ordenadas = [](QStringList l) { return l.sort(), l; };
    for (const qint32 id : todos) {
        QStringList antes = enBase(id, true);
        const int cabezal = cargar(id);
        const QStringList filas = grilla(false);
        m_mensajes.mostrados.clear();
        if (QDate::fromString(antes[0].section(u'|', 1, 1), Qt::ISODate) > BaseDePrueba::Hoy())
            m_mensajes.Responder(R::No); // 1807: keep it an entry
        if (m_sesion.EntrarEdicion(cabezal)) {
            m_sesion.AceptarLinea();
            m_sesion.SalirEdicion();
        }
        EXPECT_EQ(m_sesion.FilaEdicion(), 0);
        QStringList despues = enBase(id, true);
        const bool escrito = despues.takeLast() != antes.takeLast();
        escritos += escrito ? 1 : 0;
        // Written, an entry without a book takes the default one, and "no authoriser" is 0.
        QStringList cabezalAntes = antes[0].split(u'|');
        if (escrito && cabezalAntes[3] == QLatin1String("null"))
            cabezalAntes[3] = QString::number(Demo::kLibroDiario);
        else // as sets: the loading query leaves two lines of one account on one side in the engine's order
            EXPECT_EQ(ordenadas(grilla(false)), ordenadas(filas)) << "asiento " << id;
        if (escrito && cabezalAntes[4] == QLatin1String("null"))
            cabezalAntes[4] = QStringLiteral("0");
        antes[0] = cabezalAntes.join(u'|');
        EXPECT_EQ(despues, antes) << "asiento " << id << " " << m_mensajes.mostrados.join(u'\n').toStdString();
        m_asientos.QuitarAsientoDeGrilla(id);
    }
    EXPECT_GT(escritos, todos.size() * 9 / 10);
}

// Another session's write is marked on the rows looked at, the last of them included, and
// on no other; the mark says who wrote it.
TEST_P(Edicion, UnaEscrituraAjenaSeMarcaEnLasFilasMiradas)
{
    const QList<qint32> registrados = ids(QStringLiteral("AsiEstado = 1 And AsiFechaAsiento < '2026-11-01'"));
    ASSERT_GE(registrados.size(), 2);
    const int primero = cargar(registrados[0]);
    const int segundo = cargar(registrados[1]);
    std::pair<int, int> miradas{primero, segundo};
    CambiosAjenos vigia(m_datos, m_asientos, [&] { return miradas; });
    for (const qint32 id : {registrados[0], registrados[1]}) {
        AsientoDatos otro(m_base.conexion());
        otro.FijarUsuario(Demo::kUsuarioContador);
        ASSERT_TRUE(Bien(otro.CargarAsiento(id)));
        ASSERT_TRUE(Bien(otro.Grabar()));
    }
    miradas = {segundo, segundo};
    EXPECT_EQ(vigia.Revisar(), 1);
    EXPECT_EQ(m_grilla.Imagen(segundo), QLatin1String(CambiosAjenos::kImagen));
    EXPECT_TRUE(vigia.Aviso(segundo).startsWith(QStringLiteral("Modificado por Contadora"))) << vigia.Aviso(segundo).toStdString();
    EXPECT_NE(m_grilla.Imagen(primero), QLatin1String(CambiosAjenos::kImagen));
    EXPECT_TRUE(vigia.Aviso(primero).isEmpty());
    miradas = {primero, segundo};
    EXPECT_EQ(vigia.Revisar(), 1); // the one marked already is not marked again
}

// A refusal of the store is told by its own text, an unbalanced entry with its totals; any
// other failure by the command's text with the detail.
TEST_P(Edicion, UnRechazoSeDiceConSuTextoYUnFalloConElDelComando)
{
    const struct
    {
        Fallo fallo;
        QString dicho, detalle;
    } casos[] = {
        {{AsientoDatos::kDescuadrado, QStringLiteral("debe 1,00, haber 2,00")}, QStringLiteral("error: 1957"), QStringLiteral("debe 1,00, haber 2,00")},
        {{AsientoDatos::kModificado, QStringLiteral("modificado")}, QStringLiteral("error: 1820"), QString()},
        {{0, QStringLiteral("no existe el asiento 7")}, QStringLiteral("error: 1931"), QStringLiteral("no existe el asiento 7")},
    };
    for (const auto &c : casos) {
        SCOPED_TRACE(c.dicho.toStdString());
        m_mensajes.mostrados.clear();
        m_mensajes.detalles.clear();
        m_comandos.DecirRechazo(c.fallo, 1931);
        EXPECT_EQ(m_mensajes.mostrados, QStringList{c.dicho});
        EXPECT_EQ(m_mensajes.detalles, QStringList{c.detalle});
    }

    // An entry another session deleted for good: its header is not written, and that is said.
    const qint32 id = ids(QStringLiteral("AsiEstado = 1")).first();
    m_asientos.TomarAsientoDeFila(cargar(id));
    ejecutar(QStringLiteral("Delete From cceAsientoCuenta Where ACuIDAsiento = ?"), {id});
    ejecutar(QStringLiteral("Delete From cceAsientos Where AsiID = ?"), {id});
    m_mensajes.mostrados.clear();
    m_mensajes.detalles.clear();
    EXPECT_FALSE(m_comandos.GrabarCabezal());
    EXPECT_EQ(m_mensajes.mostrados, QStringList{QStringLiteral("error: 1923")});
    // The store says why in the user's words.
    EXPECT_EQ(m_mensajes.detalles, QStringList{TextoEspanol(2138).arg(id)});
}

// The trash gives an entry back only to a user who may delete entries: the command refuses
// it, whatever window calls it.
TEST_P(Edicion, LaPapeleraDevuelveSoloAQuienPuedeEliminar)
{
    nuevo(BaseDePrueba::Hoy(), QStringLiteral("A la papelera"));
    teclear(cuenta("5.3.01", 800), cuenta("1.1.01", 800));
    const qint32 id = ultimoId();
    m_base.conexion().Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiID = ?"), {id});
    ComandosRestauracion restauracion(m_datos, m_comandos, m_asientos, m_vista);
    const auto papelera = restauracion.Papelera();
    ASSERT_TRUE(papelera);
    const auto e = std::find_if(papelera->begin(), papelera->end(), [id](const auto &p) { return p.asiID == id; });
    ASSERT_NE(e, papelera->end());

    ASSERT_TRUE(m_datos.TienePermiso(u'E'));
    const QString letras = std::exchange(m_datos.letras, QString(m_datos.letras).remove(QChar(u'E'), Qt::CaseInsensitive));
    EXPECT_FALSE(restauracion.RestaurarDePapelera(*e));
    EXPECT_TRUE(cabezal(id).startsWith(QStringLiteral("9|")));
    m_datos.letras = letras;
    EXPECT_TRUE(restauracion.RestaurarDePapelera(*e));
    EXPECT_FALSE(cabezal(id).startsWith(QStringLiteral("9|"))) << cabezal(id).toStdString();
}

INSTANCIAR_EN_MOTORES(Edicion);

} // namespace
