#include "fixtureasientos.h"

#include "comun/textoscatalogo.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

class Datos : public ::testing::TestWithParam<Motor>
{
protected:
    // A registered entry of 4 May 2026: 300 of alquileres (project 2, department 3) against
    // U$S 7.50 worth 300, and a line of nothing.
    qint32 nuevo(AsientoDatos &a)
    {
        a.Cabezal() = CabezalDatos{0, 1, 1, QDate(2026, 5, 4), QStringLiteral("Compra de útiles"), 1};
        a.Lineas() = {Linea(22, true, 300, -1, 2, 3), Linea(11, false, 7.5, 300), Linea(10, true, 0)};
        return IdGrabado(a);
    }
    int contar(const QString &sql) { return d.Valor(sql).toInt(); }

    DatosAsientos d{GetParam()};
};

TEST_P(Datos, AsientoNuevoConSusLineasEnOrdenElNumeroDelMotorYSusCuentasCerradas)
{
    AsientoDatos a(d.conexion());
    const qint32 id = nuevo(a);
    ASSERT_GT(id, 0);
    const QDateTime sello = a.Cabezal().FechaModificado;
    EXPECT_GT(nuevo(a), id);

    AsientoDatos leido(d.conexion());
    ASSERT_TRUE(Bien(leido.CargarAsiento(id)));
    EXPECT_EQ(leido.Cabezal().Leyenda, QStringLiteral("Compra de útiles"));
    ASSERT_TRUE(sello.isValid());
    EXPECT_EQ(leido.Cabezal().FechaModificado, sello); // to the millisecond
    ASSERT_EQ(leido.Lineas().size(), 3);
    const LineaDatos &l0 = leido.Lineas()[0], &l1 = leido.Lineas()[1];
    EXPECT_EQ(std::tuple(l0.Cuenta, l0.Proyecto, l0.Departamento), std::tuple(22, 2, 3));
    EXPECT_EQ(std::tuple(l1.AlDebe, l1.Importe, l1.ImporteMC), std::tuple(false, 7.5_imp, 300_imp));
    EXPECT_EQ(d.Filas(QStringLiteral("Select ACuOrden, ACuCuenta From cceAsientoCuenta Where ACuIDAsiento = ? Order By ACuOrden"), {id}),
              (QStringList{QStringLiteral("1|22"), QStringLiteral("2|11"), QStringLiteral("3|10")}));

    // An account is closed for its closing date and every date before it.
    leido.Lineas() = {Linea(21, true, 1), Linea(10, false, 1)}; // 21 is closed on 30 June 2020
    EXPECT_TRUE(*leido.HayCuentasCerradas(QDate(2020, 6, 30)));
    EXPECT_TRUE(*leido.HayCuentasCerradas(QDate(2020, 1, 1)));
    EXPECT_FALSE(*leido.HayCuentasCerradas(QDate(2020, 7, 1)));
    leido.Lineas() = {Linea(10, true, 1)};
    EXPECT_FALSE(*leido.HayCuentasCerradas(QDate(2000, 1, 1)));
}

TEST_P(Datos, UnaEscrituraQueFallaNoDejaNada)
{
    AsientoDatos a(d.conexion());
    const qint32 id = nuevo(a);
    ASSERT_TRUE(Bien(a.CargarAsiento(id)));
    a.Cabezal().Leyenda = QStringLiteral("no debe quedar");
    a.Lineas().append(Linea(10, true, 1));

    // An amount past a line's range is refused before anything is written.
    a.Lineas()[0].ImporteMC = Importe::MaximoLinea() + 0.0001_imp;
    EXPECT_EQ(NumeroDe(a.GrabarTodo()), AsientoDatos::kFueraDeRango);
    a.Lineas()[0].ImporteMC = 300_imp;

    // The lines cannot be written: the header written before them goes back too.
    d.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientoCuenta Rename To cceAsientoCuentaAparte"));
    const auto fallo = a.GrabarTodo();
    EXPECT_TRUE(fallo && fallo->deLaBase) << Motivo(fallo);
    d.conexion().Ejecutar(QStringLiteral("Alter Table cceAsientoCuentaAparte Rename To cceAsientoCuenta"));

    AsientoDatos leido(d.conexion());
    ASSERT_TRUE(Bien(leido.CargarAsiento(id)));
    EXPECT_EQ(leido.Cabezal().Leyenda, QStringLiteral("Compra de útiles"));
    EXPECT_EQ(leido.Lineas().size(), 3);
    EXPECT_EQ(leido.Cabezal().FechaModificado, a.Cabezal().FechaModificado);
}

TEST_P(Datos, PapeleraConSelloLosCierresDeLaAperturaYEliminarDefinitivo)
{
    LibrosSistema libros;
    libros.apertura = 91;
    libros.cierre = 92;
    libros.adc = 93;
    AsientoDatos a(d.conexion(), libros);
    a.FijarTextos(TextoEspanol); // refusals are told in the user's words
    const qint32 id = nuevo(a);
    const QDateTime sello = a.Cabezal().FechaModificado;
    EXPECT_EQ(NumeroDe(a.EnviarPapelera(id, sello.addMSecs(-1))), AsientoDatos::kModificado); // someone saved since
    EXPECT_EQ(Papelera(a, id, sello), QString::number(id));
    EXPECT_EQ(contar(QStringLiteral("Select AsiEstado From cceAsientos Where AsiID = %1").arg(id)), 9);

    // The opening takes the closing of the day before it along, not an older one.
    const QString lineas = QStringLiteral("10:D:5,20:H:5");
    const qint32 cierre = d.Asiento(QDate(2025, 12, 31), 1, lineas, QStringLiteral("Cierre"), 92);
    const qint32 otroCierre = d.Asiento(QDate(2024, 12, 31), 1, lineas, QStringLiteral("Cierre"), 92);
    const qint32 apertura = d.Asiento(QDate(2026, 1, 1), 1, lineas, QStringLiteral("Apertura"), 91);
    AsientoDatos ap(d.conexion(), libros);
    ASSERT_TRUE(Bien(ap.CargarAsiento(apertura)));
    EXPECT_EQ(Papelera(ap, apertura, ap.Cabezal().FechaModificado), QStringLiteral("%1,%2").arg(apertura).arg(cierre));
    EXPECT_EQ(contar(QStringLiteral("Select AsiEstado From cceAsientos Where AsiID = %1").arg(otroCierre)), 1);
    // Any other entry goes alone, even the day after a closing.
    const qint32 comun = d.Asiento(QDate(2025, 1, 1), 1, lineas, QStringLiteral("Cobro"));
    ASSERT_TRUE(Bien(ap.CargarAsiento(comun)));
    EXPECT_EQ(Papelera(ap, comun, ap.Cabezal().FechaModificado), QString::number(comun));

    // The opening-balance entry: later exchange differences (1), or a later closing (2).
    EXPECT_EQ(*ap.EstadoApertura(QDate(2024, 1, 1), 1), 2);
    d.Asiento(QDate(2024, 3, 1), 1, lineas, QStringLiteral("ADC"), 93);
    EXPECT_EQ(*ap.EstadoApertura(QDate(2024, 1, 1), 1), 1);
    EXPECT_EQ(*ap.EstadoApertura(QDate(2026, 6, 1), 1), 0);

    // Deleted for good: header and lines, unless someone saved since.
    const qint32 otro = nuevo(a);
    const QString lineasDe = QStringLiteral("Select Count(*) From cceAsientoCuenta Where ACuIDAsiento = %1").arg(otro);
    // A copy read before another write deletes nothing.
    EXPECT_EQ(NumeroDe(a.EliminarDefinitivo(otro, a.Cabezal().FechaModificado.addMSecs(-1))), AsientoDatos::kModificado);
    EXPECT_EQ(contar(lineasDe), 3);
    ASSERT_TRUE(Bien(a.EliminarDefinitivo(otro, a.Cabezal().FechaModificado)));
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos Where AsiID = %1").arg(otro)), 0);
    EXPECT_EQ(contar(lineasDe), 0);
    const auto fallo = a.CargarAsiento(otro);
    EXPECT_TRUE(fallo && !fallo->deLaBase && fallo->detalle.contains(QStringLiteral("no existe"))) << Motivo(fallo);
}

// A new stamp is the clock's now, kept as wall-clock time marked Qt::UTC, to the
// millisecond or in whole seconds, and always later than the stamp read.
TEST(SelloNuevo, ElAhoraDelRelojYSiempreDespuesDelLeido)
{
    using S = AsientoDatos::Sello;
    Reloj reloj;
    const QDateTime fijado(QDate(2028, 2, 29), QTime(23, 59, 58, 500), Qt::UTC);
    reloj.Fijar(fijado);
    const QDateTime ms = AsientoDatos::SelloNuevo(reloj, QDateTime());
    EXPECT_EQ(ms.timeSpec(), Qt::UTC);
    EXPECT_GE(ms, fijado);
    EXPECT_LT(ms, fijado.addSecs(5));
    EXPECT_LE(ms, AsientoDatos::SelloNuevo(reloj, QDateTime())); // two in a row never go back
    EXPECT_EQ(AsientoDatos::SelloNuevo(reloj, fijado), fijado.addMSecs(1)); // a stamp read this very moment is passed
    const QDateTime enteros = AsientoDatos::SelloNuevo(reloj, QDateTime(), S::SegundosEnteros);
    EXPECT_EQ(enteros.time().msec(), 0);
    EXPECT_GE(enteros, fijado.addMSecs(-500));
    EXPECT_LT(enteros, fijado.addSecs(5));

    // A stamp read before now gives way to now; one after now is passed by a step.
    const QDateTime viejo(QDate(2020, 1, 1), QTime(10, 0, 0, 999), Qt::UTC);
    EXPECT_GE(AsientoDatos::SelloNuevo(reloj, viejo), fijado);
    EXPECT_GE(AsientoDatos::SelloNuevo(reloj, viejo, S::SegundosEnteros), fijado.addMSecs(-500));
    const QDateTime leido(QDate(2999, 1, 1), QTime(10, 0, 0, 999), Qt::UTC);
    EXPECT_EQ(AsientoDatos::SelloNuevo(reloj, leido), leido.addMSecs(1));
    EXPECT_EQ(AsientoDatos::SelloNuevo(reloj, leido, S::SegundosEnteros), QDateTime(QDate(2999, 1, 1), QTime(10, 0, 1), Qt::UTC));
}

// Whatever the caller, the service stores no registered entry that does not balance by the
// accounts' currencies: neither a new one, nor a change of its lines, nor a header write
// that registers an incomplete one. Nothing of a refused write is kept. (The rule itself is
// CalcularBalance's, tested on its own.)
TEST_P(Datos, UnAsientoRegistradoSiempreCierra)
{
    auto registrado = [&](QVector<LineaDatos> lineas, int estado = 1) {
        AsientoDatos a(d.conexion());
        a.Cabezal() = CabezalDatos{0, 1, qint16(estado), QDate(2026, 5, 4), QString(), 1};
        a.Lineas() = lineas;
        const auto fallo = a.GrabarTodo();
        return std::make_pair(fallo ? 0 : a.Cabezal().AsiID, NumeroDe(fallo));
    };
    const int antes = contar(QStringLiteral("Select Count(*) From cceAsientos"));
    const int historial = contar(QStringLiteral("Select Count(*) From cceAsientosHistorial"));
    EXPECT_EQ(registrado({Linea(10, true, 300), Linea(22, false, 299.99)}), std::make_pair(0, int(AsientoDatos::kDescuadrado)));
    // Dollars on both sides balance in pesos but not in dollars.
    EXPECT_EQ(registrado({Linea(11, true, 10, 400), Linea(11, false, 11, 400)}), std::make_pair(0, int(AsientoDatos::kDescuadrado)));
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos")), antes);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientosHistorial")), historial);

    // Each line is stored as the mask shows it: 300.004 as 300.00. The largest amount a line
    // takes is kept.
    const qint32 redondeado = registrado({Linea(10, true, 300.004), Linea(22, false, 300)}).first;
    ASSERT_GT(redondeado, 0);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientoCuenta Where ACuIDAsiento = %1 And ACuImporteMC = 300 And ACuDebe = 300")
                         .arg(redondeado)),
              1);
    EXPECT_GT(registrado({Linea(10, true, 99999999999.9999), Linea(22, false, 99999999999.9999)}).first, 0);
    const qint32 inconcluso = registrado({Linea(10, true, 300), Linea(22, false, 200)}, 2).first;
    ASSERT_GT(inconcluso, 0);

    // Registering the incomplete one by its header alone is refused; its lines as they are.
    AsientoDatos a(d.conexion());
    ASSERT_TRUE(Bien(a.CargarAsiento(inconcluso)));
    EXPECT_FALSE(a.Balance()->cierra);
    a.Cabezal().Estado = 1;
    EXPECT_EQ(NumeroDe(a.Grabar()), AsientoDatos::kDescuadrado);
    EXPECT_EQ(contar(QStringLiteral("Select AsiEstado From cceAsientos Where AsiID = %1").arg(inconcluso)), 2);

    // Completing its lines registers it; taking one away again while registered is refused.
    a.Lineas()[1].Importe = a.Lineas()[1].ImporteMC = 300_imp;
    EXPECT_TRUE(a.Balance()->cierra);
    EXPECT_EQ(IdGrabado(a), inconcluso);
    a.Lineas().removeLast();
    EXPECT_EQ(NumeroDe(a.GrabarTodo()), AsientoDatos::kDescuadrado);
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientoCuenta Where ACuIDAsiento = %1").arg(inconcluso)), 2);
}

// The company has one opening-balance entry: a second one is refused whether it is made
// new, moved into the book, or registered beside an unfinished one; once the first is in the
// trash, another may be made. The book comes from the system parameters when the caller
// does not name it.
TEST_P(Datos, UnSoloAsientoDeAperturaPorEmpresa)
{
    constexpr qint16 kApertura = 94;
    d.conexion().Ejecutar(QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre, LibDelSistema) Values (94, 'Apertura', 1)"));
    d.conexion().Ejecutar(QStringLiteral("Delete From genParametros Where ParNombre = 'sis_LibroAsientoPrimeraApertura'"));
    d.conexion().Ejecutar(QStringLiteral("Insert Into genParametros (ParNombre, ParValor) Values ('sis_LibroAsientoPrimeraApertura', 94)"));
    auto escribir = [&](qint16 libro, int estado) {
        AsientoDatos a(d.conexion());
        a.Cabezal() = CabezalDatos{0, 1, qint16(estado), QDate(2026, 1, 1), QString(), libro};
        a.Lineas() = {Linea(10, true, 50), Linea(22, false, 50)};
        const auto fallo = a.GrabarTodo();
        return fallo ? -fallo->numeroTexto : a.Cabezal().AsiID;
    };
    const qint32 primero = escribir(kApertura, 2);
    ASSERT_GT(primero, 0);
    EXPECT_EQ(escribir(kApertura, 1), -1837);
    EXPECT_EQ(escribir(kApertura, 2), -1837);

    AsientoDatos mover(d.conexion());
    ASSERT_TRUE(Bien(mover.CargarAsiento(escribir(1, 1))));
    mover.Cabezal().Libro = kApertura;
    EXPECT_EQ(NumeroDe(mover.Grabar()), AsientoDatos::kAperturaDuplicada);

    // The unfinished one itself may still change and be registered.
    AsientoDatos a(d.conexion());
    ASSERT_TRUE(Bien(a.CargarAsiento(primero)));
    a.Cabezal().Estado = 1;
    EXPECT_TRUE(Bien(a.Grabar()));
    EXPECT_EQ(contar(QStringLiteral("Select Count(*) From cceAsientos Where AsiTipo = 94 And AsiEstado <> 9")), 1);

    EXPECT_FALSE(Papelera(a, primero, a.Cabezal().FechaModificado).isEmpty());
    EXPECT_GT(escribir(kApertura, 1), 0);
}

INSTANCIAR_EN_MOTORES(Datos);

} // namespace
