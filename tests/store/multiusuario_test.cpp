#include "comun/asientosdeprueba.h"
#include "comun/basesprueba.h"
#include "comun/columna.h"
#include "comun/conexionespia.h"
#include "comun/textoscatalogo.h"

#include "entries/asientodatos.h"
#include "entries/historialasiento.h"
#include "store/basedelprograma.h"
#include "store/basedemo.h"
#include "store/conexionqt.h"
#include "store/esquema.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTest>

#include <gtest/gtest.h>

#include <barrier>
#include <functional>
#include <optional>
#include <thread>

namespace {

using Causa = ErrorBaseDatos::Causa;

qint64 filasHistorial(Conexion &c, qint32 id)
{
    return ValorDe(c, QStringLiteral("Select Count(*) From cceAsientosHistorial Where HisAsiento = ?"), {id}).toLongLong();
}

// Every table of the database with its number of rows: what "nothing changed" compares.
QMap<QString, qint64> Contenido(Conexion &c)
{
    QMap<QString, qint64> r;
    for (const QString &t : Columna(c, c.motor() == Motor::SQLite
                                           ? QStringLiteral("Select name From sqlite_master Where type = 'table'")
                                           : QStringLiteral("Select table_name From information_schema.tables Where table_schema = current_schema()")))
        r.insert(t.toLower(), ValorDe(c, QStringLiteral("Select Count(*) From ") + t).toLongLong());
    return r;
}

// The journal mode of a SQLite file, as a new connection reads it.
QString ModoSQLite(const QString &archivo)
{
    return ValorDe(*ConexionQt::Abrir(DireccionBD::Leer(archivo)), QStringLiteral("PRAGMA journal_mode")).toString().toLower();
}

// A database refused is left as it was: every table with its rows and, on SQLite, the file
// not gone to write-ahead logging.
void SinTocar(BaseDePrueba &base, const QMap<QString, qint64> &antes)
{
    EXPECT_EQ(Contenido(base.conexion()), antes);
    if (base.motor() == Motor::SQLite) {
        EXPECT_NE(ModoSQLite(base.direccion()), QStringLiteral("wal"));
        EXPECT_FALSE(QFile::exists(base.direccion() + QStringLiteral("-wal")));
    }
}

// Writes a balanced entry through the given AsientoDatos; answers why it was refused.
std::optional<Fallo> Escribir(AsientoDatos &a, const QString &leyenda, double importe, qint16 libro = Demo::kLibroDiario)
{
    a.Cabezal() = CabezalDatos{0, Demo::kEmpresa, 1, QDate(2026, 5, 4), leyenda, libro};
    a.Lineas() = {Linea(22, true, importe), Linea(11, false, importe)};
    return a.GrabarTodo();
}

// The same; answers its id, 0 when refused.
qint32 Nuevo(AsientoDatos &a, const QString &leyenda, double importe, qint16 libro = Demo::kLibroDiario)
{
    return Escribir(a, leyenda, importe, libro) ? 0 : a.Cabezal().AsiID;
}

// Runs a session's steps for sides 0 and 1, each in its own thread, meeting at paso. A side
// whose steps throw leaves paso so the other is not left waiting; answers what was thrown,
// empty when both sides finished.
QString EnDosHilos(std::barrier<> &paso, const std::function<void(int lado)> &sesion)
{
    QString fallo[2];
    auto lado = [&](int l) {
        try {
            sesion(l);
        } catch (const std::exception &e) {
            fallo[l] = QString::fromUtf8(e.what());
            paso.arrive_and_drop();
        }
    };
    std::thread uno(lado, 0), dos(lado, 1);
    uno.join();
    dos.join();
    return (fallo[0] + QLatin1Char(' ') + fallo[1]).trimmed();
}

using Multiusuario = ::testing::TestWithParam<Motor>;

TEST_P(Multiusuario, InicializarCreaLaBaseUnaSolaVez)
{
    for (const bool conDemo : {true, false}) {
        SCOPED_TRACE(conDemo ? "con demo" : "sin demo");
        BaseDePrueba nueva(GetParam(), BaseDePrueba::Contenido::Vacia);
        const Inicializacion r = InicializarBase(nueva.direccion(), conDemo, BaseDePrueba::Hoy());
        ASSERT_EQ(r.resultado, Inicializacion::Resultado::Creada) << r.informe.toStdString();
        EXPECT_FALSE(r.informe.contains(QLatin1Char('\n')));

        auto c = AbrirBaseDelPrograma(nueva.direccion());
        EXPECT_FALSE(c->soloLectura());
        const auto contenido = Contenido(*c);
        for (const QString &t : TablasEsquema())
            EXPECT_TRUE(contenido.contains(t.toLower())) << t.toStdString();
        EXPECT_EQ(contenido.value(QStringLiteral("cceempresas")), 1);
        for (const char *una : {"segPermisos Where PerUsuario = 1 And PerLetras = 'AMEQ' And PerAutoriza = 1",
                                "genParametros Where ParNombre = 'sis_Multiusuario' And ParValor = 1",
                                "genMonedas m Join cceEmpresas e On e.EmpMonedaContabilidad = m.MonID"})
            EXPECT_EQ(ValorDe(*c, QStringLiteral("Select Count(*) From ") + QLatin1String(una)).toInt(), 1) << una;
        QStringList sistema;
        for (int libro : {Demo::kLibroResumen, Demo::kLibroApertura, Demo::kLibroCierre, Demo::kLibroADC, Demo::kLibroPrimeraApertura})
            sistema << QString::number(libro);
        EXPECT_EQ(Columna(*c, QStringLiteral("Select LibCodigo From genLibros Where LibDelSistema = 1 Order By LibCodigo")), sistema);
        const qint64 asientos = contenido.value(QStringLiteral("cceasientos"));
        EXPECT_EQ(asientos > 0, conDemo);
        if (conDemo)
            EXPECT_TRUE(r.informe.contains(QString::number(asientos))) << r.informe.toStdString();
        else
            EXPECT_EQ(contenido.value(QStringLiteral("ccecuentas")), 0);

        const Inicializacion otra = InicializarBase(nueva.direccion(), !conDemo, BaseDePrueba::Hoy());
        EXPECT_EQ(otra.resultado, Inicializacion::Resultado::YaExistia) << otra.informe.toStdString();
        EXPECT_EQ(Contenido(*c), contenido);
    }
}

TEST_P(Multiusuario, BaseVaciaOAjenaSeRechazaSinTocarla)
{
    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    const auto sinTablas = ErrorDe([&] { AbrirBaseDelPrograma(vacia.direccion()); });
    ASSERT_TRUE(sinTablas);
    EXPECT_TRUE(sinTablas->descripcion().contains(QStringLiteral("--inicializar"))) << sinTablas->what();
    SinTocar(vacia, {});

    BaseDePrueba ajena(GetParam(), BaseDePrueba::Contenido::Vacia);
    ajena.conexion().Ejecutar(QStringLiteral("Create Table clientes (id Integer Primary Key, nombre Varchar(40))"));
    ajena.conexion().Ejecutar(QStringLiteral("Insert Into clientes (id, nombre) Values (1, 'Ana')"));
    const auto antes = Contenido(ajena.conexion());
    const Inicializacion r = InicializarBase(ajena.direccion(), true, BaseDePrueba::Hoy());
    EXPECT_EQ(r.resultado, Inicializacion::Resultado::Ajena) << r.informe.toStdString();
    EXPECT_THROW(AbrirBaseDelPrograma(ajena.direccion()), ErrorBaseDatos);
    SinTocar(ajena, antes);

    // Three of the program's tables: what is missing is named, and nothing changes.
    BaseDePrueba parcial(GetParam(), BaseDePrueba::Contenido::Vacia);
    for (const QString &s : SentenciasEsquema(GetParam()))
        if (s.contains(QLatin1String("TABLE")) && (s.contains(QLatin1String("cceAsientos ")) || s.contains(QLatin1String("cceAsientoCuenta "))
                                                  || s.contains(QLatin1String("cceCuentas "))))
            parcial.conexion().Ejecutar(s);
    const auto antesParcial = Contenido(parcial.conexion());
    ASSERT_GE(antesParcial.size(), 3) << antesParcial.keys().join(QLatin1Char(' ')).toStdString(); // SQLite adds its own sequence table
    const Inicializacion p = InicializarBase(parcial.direccion(), true, BaseDePrueba::Hoy());
    EXPECT_NE(p.resultado, Inicializacion::Resultado::YaExistia);
    EXPECT_NE(p.resultado, Inicializacion::Resultado::Creada);
    EXPECT_TRUE(p.informe.contains(QStringLiteral("le faltan")) && p.informe.contains(QStringLiteral("cceEmpresas"))) << p.informe.toStdString();
    const auto incompleta = ErrorDe([&] { AbrirBaseDelPrograma(parcial.direccion()); });
    ASSERT_TRUE(incompleta);
    EXPECT_TRUE(incompleta->descripcion().contains(QStringLiteral("genMonedas"))) << incompleta->what();
    SinTocar(parcial, antesParcial); // not even the history table is added
}

// Write-ahead logging is a lasting mark in the file: the program's own database goes to it
// when opened; the refused ones above never do.
TEST(MultiusuarioSQLite, LaBaseDelProgramaPasaAWal)
{
    BaseDePrueba propia(Motor::SQLite, BaseDePrueba::Contenido::Esquema);
    ASSERT_EQ(ModoSQLite(propia.direccion()), QStringLiteral("delete"));
    auto c = AbrirBaseDelPrograma(propia.direccion());
    EXPECT_EQ(ModoSQLite(propia.direccion()), QStringLiteral("wal"));
}

// Each write adds exactly one history row, for this entry, by the user set, of its kind, and
// starting where the last one left it; a write refused for a stale stamp adds none.
TEST_P(Multiusuario, CadaEscrituraDejaUnaFilaDeHistorial)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    Conexion &c = base.conexion();
    c.Ejecutar(QStringLiteral("Insert Into segUsuarios (UsuID, UsuNombre) Values (4, 'Contadora')"));
    AsientoDatos a(c);
    a.FijarUsuario(Demo::kUsuarioContador);
    const qint32 id = Nuevo(a, QStringLiteral("Compra de útiles"), 300);
    ASSERT_GT(id, 0);
    AsientoDatos viejo(c);
    ASSERT_TRUE(Bien(viejo.CargarAsiento(id)));

    a.Lineas() = {Linea(22, true, 450.25), Linea(11, false, 450.25)};
    ASSERT_GT(IdGrabado(a), 0);
    a.Cabezal().Estado = 0;
    ASSERT_TRUE(Bien(a.Grabar()));
    a.Cabezal().Leyenda = QStringLiteral("Compra corregida");
    ASSERT_TRUE(Bien(a.Grabar()));

    viejo.Cabezal().Leyenda = QStringLiteral("no debe quedar");
    EXPECT_EQ(NumeroDe(viejo.Grabar()), AsientoDatos::kModificado);
    EXPECT_EQ(NumeroDe(viejo.GrabarTodo()), AsientoDatos::kModificado);
    EXPECT_EQ(Papelera(viejo, id, viejo.Cabezal().FechaModificado), QString());
    EXPECT_EQ(filasHistorial(c, id), 4);

    EXPECT_EQ(Papelera(a, id, a.Cabezal().FechaModificado), QString::number(id));
    EXPECT_FALSE(Bien(viejo.EliminarDefinitivo(id, viejo.Cabezal().FechaModificado)));
    ASSERT_TRUE(Bien(a.EliminarDefinitivo(id, a.Cabezal().FechaModificado)));

    const QList<HistorialAsiento::Fila> filas = *HistorialAsiento::Leer(c, id);
    const QStringList operaciones{HistorialAsiento::kAlta,   HistorialAsiento::kCambio,   HistorialAsiento::kEstado,
                                  HistorialAsiento::kCambio, HistorialAsiento::kPapelera, HistorialAsiento::kEliminacion};
    ASSERT_EQ(filas.size(), operaciones.size());
    for (int i = 0; i < filas.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(filas[i].operacion, operaciones[i]);
        EXPECT_EQ(filas[i].usuario, Demo::kUsuarioContador);
        EXPECT_EQ(filas[i].nombreUsuario, QStringLiteral("Contadora"));
        EXPECT_EQ(filas[i].antes.isEmpty(), i == 0);
        EXPECT_EQ(filas[i].despues.isEmpty(), i == 5);
        if (i > 0) {
            EXPECT_EQ(filas[i].antes, filas[i - 1].despues);
            EXPECT_GE(filas[i].momento, filas[i - 1].momento);
        }
    }
    EXPECT_EQ(ValorDe(c, QStringLiteral("Select Count(*) From cceAsientosHistorial Where HisEmpresa Is Null Or HisEmpresa <> ?"), {Demo::kEmpresa}).toInt(), 0);
    auto debe = [](const QJsonObject &o) { return o.value(QStringLiteral("Lineas")).toArray().at(0).toObject().value(QStringLiteral("Debe")).toDouble(); };
    EXPECT_EQ(debe(filas[0].despues), 300);
    EXPECT_EQ(debe(filas[1].despues), 450.25);
    EXPECT_EQ(filas[2].despues.value(QStringLiteral("Estado")).toInt(), 0);
    EXPECT_EQ(filas[4].despues.value(QStringLiteral("Estado")).toInt(), 9);
}

// Two sessions, each in its own thread, race over and over: both save an entry they loaded,
// at the same moment, then both make the company's opening-balance entry. Each time exactly
// one wins and the other is refused (on SQLite it may find the file busy instead): the
// winner's write is the one stored, with its history row, and the company never has two
// opening entries.
TEST_P(Multiusuario, CarrerasDeDosSesionesUnSoloGanador)
{
    constexpr int kVueltas = 40;
    const qint16 usuarios[] = {Demo::kUsuarioAdministrador, Demo::kUsuarioContador};
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    base.conexion().Ejecutar(QStringLiteral("Insert Into genParametros (ParNombre, ParValor) Values ('sis_LibroAsientoPrimeraApertura', 97)"));
    base.conexion().Ejecutar(QStringLiteral("Insert Into cceEmpresas (EmpID, EmpNombre, EmpMonedaContabilidad) Values (?, 'Prueba', 1)"),
                             {Demo::kEmpresa});
    AsientoDatos inicial(base.conexion());
    const qint32 id = Nuevo(inicial, QStringLiteral("inicial"), 10);
    ASSERT_GT(id, 0);
    struct Intento
    {
        bool gano = false;
        int rechazo = -1; // the catalogue text of the refusal
        std::optional<Causa> causa;
    };
    struct Vuelta
    {
        Intento cambio[2], apertura[2];
        QString leyenda;
        qint64 historial = 0;
        HistorialAsiento::Fila ultima;
        int aperturas = 0;
    };
    std::vector<Vuelta> vueltas(kVueltas);
    auto leyendaDe = [](int lado, int vuelta) { return QStringLiteral("lado %1 vuelta %2").arg(lado).arg(vuelta); };
    std::barrier paso(2);
    const QString direccion = base.direccion();
    const QString fallo = EnDosHilos(paso, [&](int lado) {
        auto c = AbrirBaseDelPrograma(direccion);
        Espia espia(*c);
        auto anotar = [&](Intento &i, const std::optional<Fallo> &fallo) { i = {!fallo, NumeroDe(fallo), espia.causa}; };
        AsientoDatos a(espia);
        a.FijarUsuario(usuarios[lado]);
        for (int v = 0; v < kVueltas; ++v) {
            Vuelta &t = vueltas[v];
            if (const auto fallo = a.CargarAsiento(id))
                throw std::runtime_error(Motivo(fallo));
            a.Cabezal().Leyenda = leyendaDe(lado, v);
            paso.arrive_and_wait();
            espia.causa.reset();
            anotar(t.cambio[lado], a.GrabarTodo());
            AsientoDatos apertura(espia);
            paso.arrive_and_wait();
            espia.causa.reset();
            anotar(t.apertura[lado], Escribir(apertura, QStringLiteral("Saldos iniciales %1").arg(lado), 100 + v, 97));
            paso.arrive_and_wait();
            if (lado == 0) {
                t.leyenda = ValorDe(*c, QStringLiteral("Select AsiLeyenda From cceAsientos Where AsiID = ?"), {id}).toString();
                t.historial = filasHistorial(*c, id);
                t.ultima = HistorialAsiento::Leer(*c, id)->last();
                t.aperturas = ValorDe(*c, QStringLiteral("Select Count(*) From cceAsientos Where AsiTipo = 97 And AsiEstado <> 9")).toInt();
                c->Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiTipo = 97"));
            }
            paso.arrive_and_wait();
        }
    });
    ASSERT_TRUE(fallo.isEmpty()) << fallo.toStdString();
    // Which side won; the other was refused as said, or found the file busy.
    auto ganador = [&](const Intento (&intentos)[2], int rechazo) {
        EXPECT_NE(intentos[0].gano, intentos[1].gano) << "ganaron ambos o ninguno";
        for (const Intento &i : intentos)
            if (!i.gano)
                EXPECT_TRUE(i.rechazo == rechazo || (GetParam() == Motor::SQLite && i.causa == Causa::Ocupada)) << i.rechazo;
        return intentos[0].gano ? 0 : 1;
    };
    for (int v = 0; v < kVueltas; ++v) {
        SCOPED_TRACE(v);
        const Vuelta &t = vueltas[v];
        const int lado = ganador(t.cambio, AsientoDatos::kModificado);
        EXPECT_EQ(t.leyenda, leyendaDe(lado, v));
        EXPECT_EQ(t.historial, v + 2);
        EXPECT_EQ(t.ultima.usuario, usuarios[lado]);
        EXPECT_EQ(t.ultima.despues.value(QStringLiteral("Leyenda")).toString(), t.leyenda);
        ganador(t.apertura, AsientoDatos::kAperturaDuplicada);
        EXPECT_EQ(t.aperturas, 1);
    }
}

// One session holds the entry (SQLite: a write under way; PostgreSQL: the row locked); a
// write from another waits the set time, then gives up with a Spanish message and writes
// nothing; once the first lets go, the same write goes through.
TEST_P(Multiusuario, EscrituraTrabadaEsperaYNoEscribeNada)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    AsientoDatos a(base.conexion());
    const qint32 id = Nuevo(a, QStringLiteral("original"), 10);
    constexpr int kEspera = 400;
    auto uno = AbrirBaseDelPrograma(base.direccion());
    auto dos = AbrirBaseDelPrograma(base.direccion(), kEspera);
    Espia espia(*dos);
    AsientoDatos b(espia);
    uno->Comenzar();
    if (GetParam() == Motor::SQLite)
        uno->Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 1 Where AsiID = ?"), {id});
    else
        ValorDe(*uno, QStringLiteral("Select AsiID From cceAsientos Where AsiID = ? For Update"), {id});
    ASSERT_TRUE(Bien(b.CargarAsiento(id))); // readers do not wait
    b.Cabezal().Leyenda = QStringLiteral("de la otra sesión");
    QElapsedTimer reloj;
    reloj.start();
    const auto fallo = b.GrabarTodo();
    const qint64 esperado = reloj.elapsed();
    uno->Deshacer();

    EXPECT_GE(esperado, kEspera - 50);
    EXPECT_LE(esperado, kEspera + 2000);
    ASSERT_TRUE(fallo && fallo->deLaBase);
    EXPECT_EQ(espia.causa, Causa::Ocupada);
    EXPECT_TRUE(fallo->detalle.contains(QStringLiteral("ocupada por otro usuario: se esperó 0,4 segundos"))) << Motivo(fallo);
    EXPECT_FALSE(fallo->detalle.contains(QStringLiteral("lock"), Qt::CaseInsensitive)) << Motivo(fallo);
    EXPECT_EQ(ValorDe(*uno, QStringLiteral("Select AsiLeyenda From cceAsientos Where AsiID = ?"), {id}).toString(), QStringLiteral("original"));
    EXPECT_EQ(filasHistorial(*uno, id), 1);

    EXPECT_EQ(IdGrabado(b), id);
    EXPECT_EQ(filasHistorial(*uno, id), 2);
}

INSTANCIAR_EN_MOTORES(Multiusuario);

class MultiusuarioPostgreSQL : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (MotoresDePrueba().back() != Motor::PostgreSQL)
            GTEST_SKIP() << "sin servidor PostgreSQL de prueba (ASIENTOS_TEST_PG)";
        base = std::make_unique<BaseDePrueba>(Motor::PostgreSQL, BaseDePrueba::Contenido::Esquema);
    }
    qint64 sesion(Conexion &c) { return ValorDe(c, QStringLiteral("Select pg_backend_pid()")).toLongLong(); }
    void cortar(qint64 pid)
    {
        ASSERT_TRUE(ValorDe(base->conexion(), QStringLiteral("Select pg_terminate_backend(%1, 3000)").arg(pid)).toBool());
    }
    std::unique_ptr<BaseDePrueba> base;
};

// The server drops the session: a read is tried again on a new one; a write is not, and says
// so; the connection is usable again right away, with its settings.
TEST_F(MultiusuarioPostgreSQL, SesionPerdidaSeRestablece)
{
    auto c = AbrirBaseDelPrograma(base->direccion());
    auto libros = [&] { return base->Valor(QStringLiteral("Select Count(*) From genLibros")).toInt(); };
    const qint64 primera = sesion(*c);
    cortar(primera);
    EXPECT_EQ(ValorDe(*c, QStringLiteral("Select Count(*) From cceAsientos")).toInt(), 0);
    EXPECT_NE(sesion(*c), primera);
    EXPECT_EQ(ValorDe(*c, QStringLiteral("Show lock_timeout")).toString(), QStringLiteral("5s"));

    cortar(sesion(*c));
    const QString alta = QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre) Values (7, 'Siete')");
    const auto perdida = ErrorDe([&] { c->Ejecutar(alta); });
    ASSERT_TRUE(perdida);
    EXPECT_EQ(perdida->causa(), Causa::ConexionPerdida);
    EXPECT_TRUE(perdida->descripcion().contains(QStringLiteral("Se perdió la conexión"))) << perdida->what();
    EXPECT_EQ(libros(), 0);
    EXPECT_EQ(c->Ejecutar(alta), 1);
    EXPECT_EQ(libros(), 1);

    // Lost in the middle of saving an entry: nothing of it stays, and it can be saved again.
    Espia espia(*c);
    AsientoDatos a(espia);
    const qint32 id = Nuevo(a, QStringLiteral("antes del corte"), 10);
    ASSERT_GT(id, 0);
    a.Cabezal().Leyenda = QStringLiteral("durante el corte");
    const qint64 pid = sesion(*c);
    espia.antesDeEscribir = [&] { cortar(pid); };
    const auto fallo = a.GrabarTodo();
    EXPECT_EQ(espia.causa, Causa::ConexionPerdida);
    EXPECT_TRUE(fallo && fallo->detalle.contains(QStringLiteral("no se grabó"))) << Motivo(fallo);
    EXPECT_EQ(base->Valor(QStringLiteral("Select AsiLeyenda From cceAsientos Where AsiID = ?"), {id}).toString(), QStringLiteral("antes del corte"));
    EXPECT_EQ(filasHistorial(base->conexion(), id), 1);
    EXPECT_EQ(IdGrabado(a), id);
    EXPECT_EQ(filasHistorial(base->conexion(), id), 2);
}

// Notices reach the other sessions with "entry|company|user"; a refused write sends none, a
// session is not told of its own writes, nor of another schema's (whose entries are numbered
// from 1 too), and a session that reconnected still hears each once.
TEST_F(MultiusuarioPostgreSQL, AvisosDeEscriturasDeOtrasSesiones)
{
    auto uno = AbrirBaseDelPrograma(base->direccion());
    auto dos = AbrirBaseDelPrograma(base->direccion());
    QStringList recibidos;
    ASSERT_TRUE(dos->Escuchar(QString::fromLatin1(HistorialAsiento::kCanal), [&](const QString &carga) { recibidos << carga; }));
    auto esperar = [&](int cuantos) { return QTest::qWaitFor([&] { return recibidos.size() >= cuantos; }, 2000); };

    BaseDePrueba vecina(Motor::PostgreSQL, BaseDePrueba::Contenido::Demo);
    auto deLaVecina = AbrirBaseDelPrograma(vecina.direccion());
    AsientoDatos ajeno(*deLaVecina);
    ASSERT_GT(Nuevo(ajeno, QStringLiteral("en otro esquema"), 7), 0);

    AsientoDatos a(*uno);
    a.FijarUsuario(Demo::kUsuarioContador);
    const qint32 id = Nuevo(a, QStringLiteral("aviso"), 10);
    ASSERT_GT(id, 0);
    esperar(1);
    EXPECT_EQ(recibidos, QStringList{QStringLiteral("%1|1|4").arg(id)});

    AsientoDatos viejo(*uno);
    ASSERT_TRUE(Bien(viejo.CargarAsiento(id)));
    AsientoDatos propio(*dos);
    ASSERT_TRUE(Bien(propio.CargarAsiento(id)));
    propio.Cabezal().Leyenda = QStringLiteral("de la sesión que escucha");
    ASSERT_EQ(IdGrabado(propio), id);
    viejo.Cabezal().Leyenda = QStringLiteral("tarde");
    ASSERT_EQ(NumeroDe(viejo.Grabar()), AsientoDatos::kModificado);

    // Notices come in the order of the writes: once this one is in, any other would be too.
    AsientoDatos ultimo(*uno);
    ultimo.FijarUsuario(Demo::kUsuarioSinPermisos);
    const qint32 otro = Nuevo(ultimo, QStringLiteral("cierre de la prueba"), 5);
    esperar(2);
    EXPECT_EQ(recibidos, (QStringList{QStringLiteral("%1|1|4").arg(id), QStringLiteral("%1|1|3").arg(otro)}));

    cortar(sesion(*dos));
    EXPECT_EQ(ValorDe(*dos, QStringLiteral("Select Count(*) From cceAsientos")).toInt(), 2); // reconnects
    const qint32 tercero = Nuevo(ultimo, QStringLiteral("tras reconectar"), 5);
    esperar(3);
    EXPECT_EQ(recibidos.mid(2), QStringList{QStringLiteral("%1|1|3").arg(tercero)});

    // A notice that reaches the session while it reads rows is heard all the same.
    const qint32 cuarto = Nuevo(ultimo, QStringLiteral("durante una lectura"), 5);
    EXPECT_EQ(ValorDe(*dos, QStringLiteral("Select Count(*) From cceAsientos")).toInt(), 4);
    esperar(4);
    EXPECT_EQ(recibidos.mid(3), QStringList{QStringLiteral("%1|1|3").arg(cuarto)});
}

// What the history shows of a write: state names, no change between an empty authoriser
// and 0, lines by account code with their amounts.
TEST(HistorialEnPalabras, DiferenciasLegibles)
{
    auto linea = [](const char *codigo, bool debe, double importe) {
        return QJsonObject{{QStringLiteral("Cuenta"), 7}, {QStringLiteral("Codigo"), QString::fromLatin1(codigo)},
                           {QStringLiteral("Debe"), debe ? QJsonValue(importe) : QJsonValue()},
                           {QStringLiteral("Haber"), debe ? QJsonValue() : QJsonValue(importe)}};
    };
    const QJsonObject antes{{QStringLiteral("Estado"), 0}, {QStringLiteral("Leyenda"), QStringLiteral("a")},
                            {QStringLiteral("Autoriza"), QJsonValue()},
                            {QStringLiteral("Lineas"), QJsonArray{linea("1.1.01", true, 68500), linea("4.1.01", false, 68500)}}};
    QJsonObject despues = antes;
    despues.insert(QStringLiteral("Estado"), 1);
    despues.insert(QStringLiteral("Autoriza"), 0);
    despues.insert(QStringLiteral("Lineas"), QJsonArray{linea("1.1.01", true, 70000.5), linea("4.1.01", false, 68500)});
    const QLocale l;
    EXPECT_EQ(HistorialAsiento::Diferencias(antes, despues, TextoEspanol),
              (QStringList{QStringLiteral("Estado: Borrador → Registrado"),
                           QStringLiteral("− cuenta 1.1.01 debe ") + l.toString(68500.0, 'f', 2),
                           QStringLiteral("+ cuenta 1.1.01 debe ") + l.toString(70000.5, 'f', 2)}));
    EXPECT_TRUE(HistorialAsiento::Diferencias(antes, antes, TextoEspanol).isEmpty());

    // Books by their names where they are known, by number where not.
    QJsonObject otroLibro = antes;
    otroLibro.insert(QStringLiteral("Libro"), 94);
    QJsonObject conLibro = antes;
    conLibro.insert(QStringLiteral("Libro"), 1);
    EXPECT_EQ(HistorialAsiento::Diferencias(conLibro, otroLibro, TextoEspanol, {{1, QStringLiteral("Diario")}}),
              QStringList{QStringLiteral("Libro: Diario → 94")});
    EXPECT_TRUE(HistorialAsiento::Version(otroLibro, TextoEspanol, {{94, QStringLiteral("Apertura")}})
                    .contains(QStringLiteral("Libro: Apertura")));
}

} // namespace
