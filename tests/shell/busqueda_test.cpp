// Searching entries from the real document: the dialog through Ctrl+B, F3 and the link,
// with the grid compared against the database afterwards.
#include "escenario.h"

#include "comun/dialogos.h"

#include "search/frmfind.h"

#include <QPushButton>
#include <QToolButton>

#include <algorithm>
#include <functional>

namespace {

using Usuario = std::function<void(frmFind &)>;

class Busquedas : public Escenario
{
protected:
    int conDialogo(const std::function<void()> &accion, const Usuario &usuario = {}) { return ConDialogo<frmFind>(accion, usuario); }
    int tecla(Qt::Key k, Qt::KeyboardModifiers mods, const Usuario &usuario = {})
    {
        return conDialogo([&] { QTest::keyClick(m_doc->grid(), k, mods); }, usuario);
    }

    static void escribirEn(frmFind &d, const char *campo, const QString &texto)
    {
        auto *e = d.findChild<QLineEdit *>(QString::fromLatin1(campo));
        e->setFocus();
        escribir(e, texto);
    }
    // Types the texts in their fields and confirms.
    static Usuario buscar(const QList<std::pair<const char *, QString>> &campos)
    {
        return [=](frmFind &d) {
            for (const auto &[campo, texto] : campos)
                escribirEn(d, campo, texto);
            d.findChild<QPushButton *>(QStringLiteral("bfOK"))->click();
        };
    }
    static Usuario entreFechas(const QDate &desde, const QDate &hasta)
    {
        return buscar({{"odInicio", desde.toString(QStringLiteral("dd/MM/yyyy"))}, {"odFin", hasta.toString(QStringLiteral("dd/MM/yyyy"))}});
    }

    // The entries whose header rows the grid shows, by id.
    QList<qint32> idsEnGrilla()
    {
        QList<qint32> l;
        for (int r : FilasCabezal(*m_doc))
            l << m_doc->asientos().IdDeFila(r);
        std::sort(l.begin(), l.end());
        return l;
    }
    // The company's entries with lines, out of the trash, dated in the range (any date
    // without one).
    QList<qint32> idsEnBase(const QDate &desde = QDate(1900, 1, 1), const QDate &hasta = QDate(2999, 1, 1))
    {
        return ids(QStringLiteral("AsiEmpresa = %1 And AsiEstado <> 9 And AsiID In (Select ACuIDAsiento From cceAsientoCuenta)"
                                  " And AsiFechaAsiento Between '%2' And '%3'")
                       .arg(Demo::kEmpresa).arg(desde.toString(Qt::ISODate), hasta.toString(Qt::ISODate)));
    }
    QStringList filasGrilla() const { return filasVistas(m_doc->grilla().FilasFijas(), m_doc->grilla().Filas() - 1); }
    QString tituloVista() const { return m_doc->findChild<QToolButton *>(QStringLiteral("hlCargar"))->text(); }

    // From one stored entry's day to that of the sixth after it: entries lie on both sides.
    std::pair<QDate, QDate> rangoConAsientos()
    {
        QList<QDate> fechas;
        auto rs = m_base.conexion().Abrir(QStringLiteral("Select AsiFechaAsiento From cceAsientos Order By AsiFechaAsiento"));
        for (; !rs->Fin(); rs->MoverSiguiente())
            fechas << rs->Fecha(QStringLiteral("AsiFechaAsiento"));
        return {fechas.value(fechas.size() / 2), fechas.value(fechas.size() / 2 + 6)};
    }

    // Stores a registered entry straight into the database: 1.1.01 against 4.1.01 for 100.
    qint32 grabarAsiento(const QDate &fecha, const QString &leyenda)
    {
        return GrabarAsientoDePrueba(m_base, 1, fecha, leyenda, Demo::kLibroDiario, {{"1.1.01", true, 100}, {"4.1.01", false, 100}});
    }
};

TEST_P(Busquedas, CtrlBBuscaUnRangoDeFechasYF3LoRepiteConLoGrabadoDespues)
{
    const auto [desde, hasta] = rangoConAsientos();
    const QList<qint32> esperados = idsEnBase(desde, hasta);
    ASSERT_GE(esperados.size(), 2);
    ASSERT_LT(esperados.size(), idsEnBase().size());
    ASSERT_NE(idsEnGrilla(), esperados);
    const QString titulo = tituloVista();
    ASSERT_NE(m_doc->VistaActual(), QStringLiteral("-1"));

    EXPECT_EQ(tecla(Qt::Key_B, Qt::ControlModifier, entreFechas(desde, hasta)), 1);
    EXPECT_EQ(idsEnGrilla(), esperados);
    EXPECT_EQ(m_doc->VistaActual(), QStringLiteral("-1"));
    EXPECT_NE(tituloVista(), titulo);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();

    // Entries stored since: the one on the last day shows, the one the day after does not.
    const qint32 dentro = grabarAsiento(hasta, QStringLiteral("Grabado tras buscar"));
    const qint32 fuera = grabarAsiento(hasta.addDays(1), QStringLiteral("Grabado fuera del rango"));
    ASSERT_GT(dentro, 0);
    ASSERT_GT(fuera, 0);
    EXPECT_EQ(tecla(Qt::Key_F3, Qt::NoModifier), 0);
    const QList<qint32> ahora = idsEnGrilla();
    EXPECT_TRUE(ahora.contains(dentro));
    EXPECT_FALSE(ahora.contains(fuera));
    EXPECT_EQ(ahora, idsEnBase(desde, hasta));
    EXPECT_EQ(m_doc->VistaActual(), QStringLiteral("-1"));
}

TEST_P(Busquedas, F3FueraDeUnaBusquedaAbreElDialogoYCancelarNoCambiaNada)
{
    const QStringList filas = filasGrilla();
    const QString vistaInicial = m_doc->VistaActual();
    const QString titulo = tituloVista();
    const Usuario cancelar = [](frmFind &d) {
        escribirEn(d, "tLeyenda", QStringLiteral("Nada de esto"));
        QTest::keyClick(d.findChild<QLineEdit *>(QStringLiteral("tLeyenda")), Qt::Key_Escape);
    };
    // F1 in the dialog opens the search's help.
    m_host.comandos.clear();
    EXPECT_EQ(tecla(Qt::Key_F3, Qt::NoModifier, [&](frmFind &d) {
                  QTest::keyClick(d.findChild<QLineEdit *>(QStringLiteral("tLeyenda")), Qt::Key_F1);
                  cancelar(d);
              }),
              1);
    EXPECT_EQ(m_host.comandos, QStringList{ComandoHost::kAyudaBusqueda});
    EXPECT_EQ(filasGrilla(), filas);
    EXPECT_EQ(m_doc->VistaActual(), vistaInicial);
    EXPECT_EQ(tituloVista(), titulo);
    auto *enlace = m_doc->findChild<QToolButton *>(QStringLiteral("hlFind"));
    ASSERT_TRUE(enlace);
    EXPECT_EQ(conDialogo([enlace] { enlace->click(); }, cancelar), 1);
    EXPECT_EQ(filasGrilla(), filas);
    EXPECT_EQ(m_doc->VistaActual(), vistaInicial);

    // Inside a search view a cancelled dialog leaves the result, and F3 still repeats the
    // search confirmed, not what was typed and cancelled.
    const auto [desde, hasta] = rangoConAsientos();
    ASSERT_EQ(tecla(Qt::Key_B, Qt::ControlModifier, entreFechas(desde, hasta)), 1);
    const QStringList encontradas = filasGrilla();
    EXPECT_EQ(tecla(Qt::Key_B, Qt::ControlModifier, cancelar), 1);
    EXPECT_EQ(filasGrilla(), encontradas);
    EXPECT_EQ(m_doc->VistaActual(), QStringLiteral("-1"));
    EXPECT_EQ(tecla(Qt::Key_F3, Qt::NoModifier), 0);
    EXPECT_EQ(filasGrilla(), encontradas);
    EXPECT_TRUE(m_mensajes.mostrados.isEmpty()) << m_mensajes.mostrados.join(QLatin1Char('\n')).toStdString();
}

INSTANCIAR_EN_MOTORES(Busquedas);

} // namespace
