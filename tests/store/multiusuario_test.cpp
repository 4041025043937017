#include "comun/basesprueba.h"
#include "comun/conexionespia.h"

#include "entries/asientodatos.h"
#include "entries/historialasiento.h"
#include "store/basedelprograma.h"
#include "store/basedemo.h"
#include "store/esquema.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <array>
#include <barrier>
#include <functional>
#include <iostream>
#include <optional>
#include <thread>

namespace {

using Causa = ErrorBaseDatos::Causa;
using Resultado = AsientoDatos::Resultado;

// A connection that passes everything on and remembers the cause of the last error, so a
// test sees what AsientoDatos turns into its own result. antesDeEscribir runs once, just
// before the next statement that writes.
QVariant valor(Conexion &c, const QString &sql, const QVariantList &v = {})
{
    auto rs = c.Abrir(sql, v);
    const QVariant r = rs->Fin() ? QVariant() : rs->Campo(0);
    rs->Cerrar();
    return r;
}

qint64 filasHistorial(Conexion &c, qint32 id)
{
    return valor(c, QStringLiteral("Select Count(*) From cceAsientosHistorial Where HisAsiento = ?"), {id}).toLongLong();
}

// Every table of the database with its number of rows: what "nothing changed" compares.
QMap<QString, qint64> Contenido(Conexion &c)
{
    auto rs = c.Abrir(c.motor() == Motor::SQLite
                          ? QStringLiteral("Select name From sqlite_master Where type = 'table'")
                          : QStringLiteral("Select table_name From information_schema.tables Where table_schema = current_schema()"));
    QStringList tablas;
    for (; !rs->Fin(); rs->MoverSiguiente())
        tablas << rs->Campo(0).toString();
    rs->Cerrar();
    QMap<QString, qint64> r;
    for (const QString &t : tablas)
        r.insert(t.toLower(), valor(c, QStringLiteral("Select Count(*) From ") + t).toLongLong());
    return r;
}

LineaDatos linea(qint32 cuenta, bool debe, double importe)
{
    LineaDatos l;
    l.Cuenta = cuenta;
    l.AlDebe = debe;
    l.Importe = l.ImporteMC = Importe::DesdeDouble(importe);
    l.Tasa = 1;
    return l;
}

// A balanced entry of user 1, written by the given AsientoDatos; answers its id.
qint32 Nuevo(AsientoDatos &a, const QString &leyenda, double importe)
{
    a.Cabezal() = CabezalDatos();
    a.Cabezal().Empresa = Demo::kEmpresa;
    a.Cabezal().Estado = 1;
    a.Cabezal().Fecha = QDate(2026, 5, 4);
    a.Cabezal().Leyenda = leyenda;
    a.Cabezal().Libro = Demo::kLibroDiario;
    a.Cabezal().Usuario = Demo::kUsuarioAdministrador;
    a.Lineas() = {linea(22, true, importe), linea(11, false, importe)};
    return a.GrabarTodo();
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

// A database with nothing in it: a SQLite path with no file yet, or an empty schema.
struct BaseSinNada
{
    explicit BaseSinNada(Motor motor)
    {
        if (motor == Motor::PostgreSQL)
            pg = std::make_unique<BaseDePrueba>(motor, BaseDePrueba::Contenido::Vacia);
        direccion = pg ? pg->direccion() : carpeta.filePath(QStringLiteral("nueva.sqlite"));
    }
    QTemporaryDir carpeta;
    std::unique_ptr<BaseDePrueba> pg;
    QString direccion;
};

QString ModoDiario(const QString &archivo)
{
    auto c = ConexionQt::Abrir(DireccionBD::Leer(archivo));
    return valor(*c, QStringLiteral("PRAGMA journal_mode")).toString().toLower();
}

QByteArray Bytes(const QString &archivo)
{
    QFile f(archivo);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(no se pudo leer)");
}

class Multiusuario : public ::testing::TestWithParam<Motor>
{
};

TEST_P(Multiusuario, InicializarCreaLaBaseUnaSolaVez)
{
    for (const bool conDemo : {true, false}) {
        SCOPED_TRACE(conDemo ? "con demo" : "sin demo");
        BaseSinNada nueva(GetParam());
        const Inicializacion r = InicializarBase(nueva.direccion, conDemo, BaseDePrueba::Hoy());
        ASSERT_EQ(r.resultado, Inicializacion::Resultado::Creada) << r.informe.toStdString();
        EXPECT_FALSE(r.informe.contains(QLatin1Char('\n')));

        auto c = AbrirBaseDelPrograma(nueva.direccion);
        EXPECT_FALSE(c->soloLectura());
        const auto contenido = Contenido(*c);
        for (const QString &t : TablasEsquema())
            EXPECT_TRUE(contenido.contains(t.toLower())) << t.toStdString();
        EXPECT_EQ(contenido.value(QStringLiteral("cceempresas")), 1);
        EXPECT_EQ(valor(*c, QStringLiteral("Select PerLetras From segPermisos Where PerUsuario = 1")).toString(), QStringLiteral("AMEQ"));
        EXPECT_GT(valor(*c, QStringLiteral("Select Count(*) From genMonedas m Join cceEmpresas e On e.EmpMonedaContabilidad = m.MonID"))
                      .toInt(), 0);
        QList<int> sistema;
        for (auto rs = c->Abrir(QStringLiteral("Select LibCodigo From genLibros Where LibDelSistema = 1 Order By LibCodigo"));
             !rs->Fin(); rs->MoverSiguiente())
            sistema << int(rs->Entero(QStringLiteral("LibCodigo")));
        EXPECT_EQ(sistema, (QList<int>{Demo::kLibroResumen, Demo::kLibroApertura, Demo::kLibroCierre, Demo::kLibroADC,
                                       Demo::kLibroPrimeraApertura}));
        if (conDemo) {
            EXPECT_GT(contenido.value(QStringLiteral("cceasientos")), 0);
            EXPECT_TRUE(r.informe.contains(QString::number(contenido.value(QStringLiteral("cceasientos"))))) << r.informe.toStdString();
        } else {
            EXPECT_EQ(contenido.value(QStringLiteral("cceasientos")), 0);
            EXPECT_EQ(contenido.value(QStringLiteral("ccecuentas")), 0);
        }

        const Inicializacion otra = InicializarBase(nueva.direccion, !conDemo, BaseDePrueba::Hoy());
        EXPECT_EQ(otra.resultado, Inicializacion::Resultado::YaExistia) << otra.informe.toStdString();
        EXPECT_EQ(Contenido(*c), contenido);
    }
}

TEST_P(Multiusuario, BaseVaciaOAjenaSeRechazaSinTocarla)
{
    BaseDePrueba vacia(GetParam(), BaseDePrueba::Contenido::Vacia);
    try {
        AbrirBaseDelPrograma(vacia.direccion());
        ADD_FAILURE() << "se abrió una base vacía";
    } catch (const ErrorBaseDatos &e) {
        EXPECT_TRUE(e.descripcion().contains(QStringLiteral("--inicializar"))) << e.what();
    }
    EXPECT_TRUE(Contenido(vacia.conexion()).isEmpty());

    BaseDePrueba ajena(GetParam(), BaseDePrueba::Contenido::Vacia);
    ajena.conexion().Ejecutar(QStringLiteral("Create Table clientes (id Integer Primary Key, nombre Varchar(40))"));
    ajena.conexion().Ejecutar(QStringLiteral("Insert Into clientes (id, nombre) Values (1, 'Ana')"));
    const auto antes = Contenido(ajena.conexion());
    const Inicializacion r = InicializarBase(ajena.direccion(), true, BaseDePrueba::Hoy());
    EXPECT_EQ(r.resultado, Inicializacion::Resultado::Ajena) << r.informe.toStdString();
    EXPECT_THROW(AbrirBaseDelPrograma(ajena.direccion()), ErrorBaseDatos);
    EXPECT_EQ(Contenido(ajena.conexion()), antes);

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
    try {
        AbrirBaseDelPrograma(parcial.direccion());
        ADD_FAILURE() << "se abrió una base incompleta";
    } catch (const ErrorBaseDatos &e) {
        EXPECT_TRUE(e.descripcion().contains(QStringLiteral("genMonedas"))) << e.what();
    }
    EXPECT_EQ(Contenido(parcial.conexion()), antesParcial) << "not even the history table was added";
}

// Write-ahead logging is a lasting mark in the file: a file of something else, or one with
// nothing yet, is left byte for byte as it was; the program's own goes to WAL when opened.
TEST(MultiusuarioSQLite, SoloLaBaseDelProgramaPasaAWal)
{
    QTemporaryDir carpeta;
    const QString ajeno = carpeta.filePath(QStringLiteral("ajeno.sqlite"));
    {
        auto c = ConexionQt::Abrir(DireccionBD::Leer(ajeno), true);
        c->Ejecutar(QStringLiteral("Create Table clientes (id Integer Primary Key, nombre Text)"));
        c->Ejecutar(QStringLiteral("Insert Into clientes (nombre) Values ('Ana')"));
    }
    BaseDePrueba vacia(Motor::SQLite, BaseDePrueba::Contenido::Vacia);
    for (const QString &archivo : {ajeno, vacia.direccion()}) {
        const QByteArray antes = Bytes(archivo);
        EXPECT_THROW(AbrirBaseDelPrograma(archivo), ErrorBaseDatos);
        EXPECT_EQ(Bytes(archivo), antes) << archivo.toStdString();
        EXPECT_FALSE(QFile::exists(archivo + QStringLiteral("-wal")));
        EXPECT_NE(ModoDiario(archivo), QStringLiteral("wal"));
    }

    const QString propia = carpeta.filePath(QStringLiteral("propia.sqlite"));
    CrearBaseVacia(*ConexionQt::Abrir(DireccionBD::Leer(propia), true), BaseDePrueba::Hoy());
    ASSERT_EQ(ModoDiario(propia), QStringLiteral("delete"));
    auto c = AbrirBaseDelPrograma(propia);
    EXPECT_EQ(ModoDiario(propia), QStringLiteral("wal"));
}

TEST_P(Multiusuario, CadaEscrituraDejaUnaFilaDeHistorial)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    Conexion &c = base.conexion();
    c.Ejecutar(QStringLiteral("Insert Into segUsuarios (UsuID, UsuNombre) Values (4, 'Contadora')"));
    AsientoDatos a(c);
    a.FijarUsuario(Demo::kUsuarioContador);
    qint32 id = 0;
    // Each write adds exactly one row, for this entry, by the user set, of the kind given.
    auto unaFilaMas = [&](const char *operacion, qint64 antes) {
        SCOPED_TRACE(operacion);
        EXPECT_EQ(filasHistorial(c, id), antes + 1);
        auto rs = c.Abrir(QStringLiteral("Select * From cceAsientosHistorial Where HisAsiento = ? Order By HisID Desc"), {id});
        ASSERT_FALSE(rs->Fin());
        EXPECT_EQ(rs->Texto(QStringLiteral("HisOperacion")), QLatin1String(operacion));
        EXPECT_EQ(rs->Entero(QStringLiteral("HisUsuario")), Demo::kUsuarioContador);
        EXPECT_EQ(rs->Entero(QStringLiteral("HisEmpresa")), Demo::kEmpresa);
        EXPECT_EQ(rs->EsNulo(QStringLiteral("HisAntes")), operacion == HistorialAsiento::kAlta);
        EXPECT_EQ(rs->EsNulo(QStringLiteral("HisDespues")), operacion == HistorialAsiento::kEliminacion);
    };

    id = Nuevo(a, QStringLiteral("Compra de útiles"), 300);
    ASSERT_GT(id, 0);
    unaFilaMas(HistorialAsiento::kAlta, 0);
    AsientoDatos viejo(c);
    ASSERT_TRUE(viejo.CargarAsiento(id));

    a.Lineas() = {linea(22, true, 450.25), linea(11, false, 450.25)};
    ASSERT_GT(a.GrabarTodo(), 0);
    unaFilaMas(HistorialAsiento::kCambio, 1);
    a.Cabezal().Estado = 0;
    ASSERT_TRUE(a.Grabar());
    unaFilaMas(HistorialAsiento::kEstado, 2);
    a.Cabezal().Leyenda = QStringLiteral("Compra corregida");
    ASSERT_TRUE(a.Grabar());
    unaFilaMas(HistorialAsiento::kCambio, 3);

    // Writes refused for a stale stamp leave no row.
    viejo.Cabezal().Leyenda = QStringLiteral("no debe quedar");
    EXPECT_FALSE(viejo.Grabar());
    EXPECT_EQ(viejo.GrabarTodo(), 0);
    EXPECT_EQ(viejo.ultimoResultado(), Resultado::Modificado);
    EXPECT_EQ(viejo.EnviarPapelera(id, 1, viejo.Cabezal().FechaModificado), QString());
    EXPECT_EQ(filasHistorial(c, id), 4);

    EXPECT_EQ(a.EnviarPapelera(id, 1, a.Cabezal().FechaModificado), QString::number(id));
    unaFilaMas(HistorialAsiento::kPapelera, 4);
    EXPECT_FALSE(viejo.EliminarDefinitivo(id, viejo.Cabezal().FechaModificado));
    ASSERT_TRUE(a.EliminarDefinitivo(id, a.Cabezal().FechaModificado));
    unaFilaMas(HistorialAsiento::kEliminacion, 5);

    const QList<HistorialAsiento::Fila> filas = HistorialAsiento::Leer(c, id);
    ASSERT_EQ(filas.size(), 6);
    QStringList operaciones;
    for (int i = 0; i < filas.size(); ++i) {
        operaciones << filas[i].operacion;
        EXPECT_EQ(filas[i].nombreUsuario, QStringLiteral("Contadora"));
        if (i > 0) {
            EXPECT_EQ(filas[i].antes, filas[i - 1].despues) << "fila " << i; // each write starts where the last one left it
            EXPECT_GE(filas[i].momento, filas[i - 1].momento);
        }
    }
    EXPECT_EQ(operaciones, (QStringList{QStringLiteral("alta"), QStringLiteral("cambio"), QStringLiteral("estado"),
                                        QStringLiteral("cambio"), QStringLiteral("papelera"), QStringLiteral("eliminacion")}));
    auto importe = [](const QJsonObject &o, int i, const char *lado) {
        return o.value(QStringLiteral("Lineas")).toArray().at(i).toObject().value(QLatin1String(lado)).toDouble();
    };
    EXPECT_EQ(filas[0].despues.value(QStringLiteral("Leyenda")).toString(), QStringLiteral("Compra de útiles"));
    EXPECT_EQ(importe(filas[0].despues, 0, "Debe"), 300);
    EXPECT_EQ(importe(filas[1].antes, 1, "Haber"), 300);
    EXPECT_EQ(importe(filas[1].despues, 0, "Debe"), 450.25);
    EXPECT_EQ(importe(filas[1].despues, 1, "Haber"), 450.25);
    EXPECT_EQ(filas[2].antes.value(QStringLiteral("Estado")).toInt(), 1);
    EXPECT_EQ(filas[2].despues.value(QStringLiteral("Estado")).toInt(), 0);
    EXPECT_EQ(filas[3].despues.value(QStringLiteral("Leyenda")).toString(), QStringLiteral("Compra corregida"));
    EXPECT_EQ(filas[4].despues.value(QStringLiteral("Estado")).toInt(), 9);
    EXPECT_EQ(filas[5].antes.value(QStringLiteral("Leyenda")).toString(), QStringLiteral("Compra corregida"));
    EXPECT_TRUE(filas[5].despues.isEmpty());
}

// Two sessions, each in its own thread, load the same entry and save it at the same moment,
// over and over: every time exactly one wins, the other is refused, and nothing is lost.
TEST_P(Multiusuario, CarreraDeDosSesionesUnSoloGanador)
{
    constexpr int kVueltas = 40;
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    qint32 id = 0;
    {
        AsientoDatos a(base.conexion());
        id = Nuevo(a, QStringLiteral("inicial"), 10);
    }
    ASSERT_GT(id, 0);
    const qint64 historialInicial = filasHistorial(base.conexion(), id);

    struct Vuelta
    {
        qint32 id[2] = {};
        Resultado resultado[2] = {};
        std::optional<Causa> causa[2];
        QString leyendaGuardada, ultimaLeyendaHistorial;
        qint64 historial = 0, ultimoUsuario = 0;
    };
    std::vector<Vuelta> vueltas(kVueltas);
    std::barrier paso(2);
    const QString direccion = base.direccion();
    auto leyendaDe = [](int lado, int vuelta) { return QStringLiteral("lado %1 vuelta %2").arg(lado).arg(vuelta); };
    auto usuarioDe = [](int lado) { return qint16(lado == 0 ? Demo::kUsuarioAdministrador : Demo::kUsuarioContador); };

    const QString fallo = EnDosHilos(paso, [&](int lado) {
        auto c = AbrirBaseDelPrograma(direccion);
        Espia espia(*c);
        AsientoDatos a(espia);
        a.FijarUsuario(usuarioDe(lado));
        for (int v = 0; v < kVueltas; ++v) {
            Vuelta &t = vueltas[v];
            if (!a.CargarAsiento(id))
                throw std::runtime_error(a.ultimoError().toStdString());
            paso.arrive_and_wait();
            a.Cabezal().Leyenda = leyendaDe(lado, v);
            espia.causa.reset();
            t.id[lado] = a.GrabarTodo();
            t.resultado[lado] = a.ultimoResultado();
            t.causa[lado] = espia.causa;
            paso.arrive_and_wait();
            if (lado == 0) {
                t.leyendaGuardada = valor(*c, QStringLiteral("Select AsiLeyenda From cceAsientos Where AsiID = ?"), {id}).toString();
                t.historial = filasHistorial(*c, id);
                const auto ultimo = HistorialAsiento::Leer(*c, id).last();
                t.ultimoUsuario = ultimo.usuario;
                t.ultimaLeyendaHistorial = ultimo.despues.value(QStringLiteral("Leyenda")).toString();
            }
        }
    });
    ASSERT_TRUE(fallo.isEmpty()) << fallo.toStdString();

    int ganadores = 0, rechazos = 0, ocupadas = 0, otros = 0, perdidas = 0;
    for (int v = 0; v < kVueltas; ++v) {
        const Vuelta &t = vueltas[v];
        int ganaron = 0, ganador = -1;
        for (int lado : {0, 1}) {
            if (t.id[lado] == id && t.resultado[lado] == Resultado::Bien) {
                ++ganaron;
                ganador = lado;
            } else if (t.resultado[lado] == Resultado::Modificado) {
                ++rechazos;
            } else if (GetParam() == Motor::SQLite && t.causa[lado] == Causa::Ocupada) {
                ++ocupadas;
            } else {
                ++otros;
            }
        }
        ganadores += ganaron;
        SCOPED_TRACE(v);
        EXPECT_EQ(ganaron, 1);
        if (ganaron != 1 || t.leyendaGuardada != leyendaDe(ganador, v) || t.historial != historialInicial + v + 1
            || t.ultimaLeyendaHistorial != t.leyendaGuardada || t.ultimoUsuario != usuarioDe(ganador))
            ++perdidas;
    }
    std::cout << "[ carrera  ] " << NombreMotor(GetParam()).toStdString() << ": vueltas " << kVueltas << ", ganadores " << ganadores
              << ", rechazos " << rechazos << ", ocupadas " << ocupadas << ", otros errores " << otros << ", perdidas " << perdidas
              << std::endl;
    EXPECT_EQ(ganadores, kVueltas);
    EXPECT_EQ(rechazos + ocupadas, kVueltas);
    EXPECT_EQ(otros, 0);
    EXPECT_EQ(perdidas, 0);
    EXPECT_EQ(filasHistorial(base.conexion(), id), historialInicial + kVueltas);
}

// Two sessions make the company's opening-balance entry at the same moment, over and over:
// each time one of them is stored and the other is refused, so the company never has two.
TEST_P(Multiusuario, DosSesionesNuncaHacenDosAsientosDeApertura)
{
    constexpr int kVueltas = 20;
    constexpr qint16 kLibroApertura = 97;
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    base.conexion().Ejecutar(QStringLiteral("Insert Into genParametros (ParNombre, ParValor) Values ('sis_LibroAsientoPrimeraApertura', 97)"));
    base.conexion().Ejecutar(QStringLiteral("Insert Into cceEmpresas (EmpID, EmpNombre, EmpMonedaContabilidad) Values (?, 'Prueba', 1)"),
                             {Demo::kEmpresa});
    std::vector<std::array<Resultado, 2>> resultados(kVueltas);
    std::vector<std::array<std::optional<Causa>, 2>> causas(kVueltas);
    std::vector<int> vivos(kVueltas);
    std::barrier paso(2);
    const QString direccion = base.direccion();
    const QString fallo = EnDosHilos(paso, [&](int lado) {
        auto c = AbrirBaseDelPrograma(direccion);
        Espia espia(*c);
        for (int v = 0; v < kVueltas; ++v) {
            AsientoDatos a(espia);
            a.Cabezal().Empresa = Demo::kEmpresa;
            a.Cabezal().Estado = 1;
            a.Cabezal().Fecha = QDate(2026, 1, 1);
            a.Cabezal().Leyenda = QStringLiteral("Saldos iniciales %1").arg(lado);
            a.Cabezal().Libro = kLibroApertura;
            a.Lineas() = {linea(22, true, 100 + v), linea(11, false, 100 + v)};
            paso.arrive_and_wait();
            espia.causa.reset();
            a.GrabarTodo();
            resultados[v][lado] = a.ultimoResultado();
            causas[v][lado] = espia.causa;
            paso.arrive_and_wait();
            if (lado == 0) {
                vivos[v] = valor(*c, QStringLiteral("Select Count(*) From cceAsientos Where AsiTipo = 97 And AsiEstado <> 9")).toInt();
                c->Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 9 Where AsiTipo = 97"));
            }
            paso.arrive_and_wait();
        }
    });
    ASSERT_TRUE(fallo.isEmpty()) << fallo.toStdString();
    for (int v = 0; v < kVueltas; ++v) {
        SCOPED_TRACE(v);
        EXPECT_EQ(vivos[v], 1);
        const int ganaron = (resultados[v][0] == Resultado::Bien) + (resultados[v][1] == Resultado::Bien);
        EXPECT_EQ(ganaron, 1);
        for (int lado : {0, 1}) {
            if (resultados[v][lado] != Resultado::Bien)
                EXPECT_TRUE(resultados[v][lado] == Resultado::AperturaDuplicada
                            || (GetParam() == Motor::SQLite && causas[v][lado] == Causa::Ocupada));
        }
    }
}

// One session holds the entry (SQLite: a write under way; PostgreSQL: the row locked); a
// write from another waits the set time, then gives up with a Spanish message and writes
// nothing; once the first lets go, the same write goes through.
TEST_P(Multiusuario, EscrituraTrabadaEsperaYNoEscribeNada)
{
    BaseDePrueba base(GetParam(), BaseDePrueba::Contenido::Esquema);
    qint32 id = 0;
    {
        AsientoDatos a(base.conexion());
        id = Nuevo(a, QStringLiteral("original"), 10);
    }
    constexpr int kEspera = 400;
    auto uno = AbrirBaseDelPrograma(base.direccion());
    auto dos = AbrirBaseDelPrograma(base.direccion(), kEspera);
    Espia espia(*dos);
    AsientoDatos b(espia);
    ASSERT_TRUE(b.CargarAsiento(id));

    uno->Comenzar();
    if (GetParam() == Motor::SQLite)
        uno->Ejecutar(QStringLiteral("Update cceAsientos Set AsiEstado = 1 Where AsiID = ?"), {id});
    else
        valor(*uno, QStringLiteral("Select AsiID From cceAsientos Where AsiID = ? For Update"), {id});
    ASSERT_TRUE(b.CargarAsiento(id)); // readers do not wait
    b.Cabezal().Leyenda = QStringLiteral("de la otra sesión");
    QElapsedTimer reloj;
    reloj.start();
    EXPECT_EQ(b.GrabarTodo(), 0);
    const qint64 esperado = reloj.elapsed();
    uno->Deshacer();

    std::cout << "[ espera   ] " << NombreMotor(GetParam()).toStdString() << ": " << esperado << " ms" << std::endl;
    EXPECT_GE(esperado, kEspera - 50);
    EXPECT_LE(esperado, kEspera + 2000);
    EXPECT_EQ(b.ultimoResultado(), Resultado::ErrorBase);
    EXPECT_EQ(espia.causa, Causa::Ocupada);
    EXPECT_TRUE(b.ultimoError().contains(QStringLiteral("ocupada por otro usuario: se esperó 0,4 segundos"))) << b.ultimoError().toStdString();
    EXPECT_FALSE(b.ultimoError().contains(QStringLiteral("locked"), Qt::CaseInsensitive));
    EXPECT_FALSE(b.ultimoError().contains(QStringLiteral("lock timeout"), Qt::CaseInsensitive));
    EXPECT_EQ(valor(*uno, QStringLiteral("Select AsiLeyenda From cceAsientos Where AsiID = ?"), {id}).toString(), QStringLiteral("original"));
    EXPECT_EQ(filasHistorial(*uno, id), 1);

    EXPECT_EQ(b.GrabarTodo(), id) << b.ultimoError().toStdString();
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
    std::unique_ptr<BaseDePrueba> base;
};

// The server drops the session: a read is tried again on a new one; a write is not, and says
// so; the connection is usable again right away, with its settings.
TEST_F(MultiusuarioPostgreSQL, SesionPerdidaSeRestablece)
{
    auto c = AbrirBaseDelPrograma(base->direccion());
    auto sesion = [&] { return valor(*c, QStringLiteral("Select pg_backend_pid()")).toLongLong(); };
    auto cortar = [&](qint64 pid) {
        ASSERT_TRUE(valor(base->conexion(), QStringLiteral("Select pg_terminate_backend(%1, 3000)").arg(pid)).toBool());
    };
    auto libros = [&] { return valor(base->conexion(), QStringLiteral("Select Count(*) From genLibros")).toInt(); };

    const qint64 primera = sesion();
    cortar(primera);
    EXPECT_EQ(valor(*c, QStringLiteral("Select Count(*) From cceAsientos")).toInt(), 0);
    EXPECT_NE(sesion(), primera);
    EXPECT_EQ(valor(*c, QStringLiteral("Show lock_timeout")).toString(), QStringLiteral("5s"));

    cortar(sesion());
    const QString alta = QStringLiteral("Insert Into genLibros (LibCodigo, LibNombre) Values (7, 'Siete')");
    try {
        c->Ejecutar(alta);
        ADD_FAILURE() << "la escritura no debía hacerse";
    } catch (const ErrorBaseDatos &e) {
        EXPECT_EQ(e.causa(), Causa::ConexionPerdida);
        EXPECT_TRUE(e.descripcion().contains(QStringLiteral("Se perdió la conexión"))) << e.what();
    }
    EXPECT_EQ(libros(), 0);
    EXPECT_EQ(c->Ejecutar(alta), 1);
    EXPECT_EQ(libros(), 1);

    // Lost in the middle of saving an entry: nothing of it stays, and it can be saved again.
    Espia espia(*c);
    AsientoDatos a(espia);
    const qint32 id = Nuevo(a, QStringLiteral("antes del corte"), 10);
    ASSERT_GT(id, 0);
    a.Cabezal().Leyenda = QStringLiteral("durante el corte");
    const qint64 pid = sesion();
    espia.antesDeEscribir = [&] { cortar(pid); };
    EXPECT_EQ(a.GrabarTodo(), 0);
    EXPECT_EQ(espia.causa, Causa::ConexionPerdida);
    EXPECT_TRUE(a.ultimoError().contains(QStringLiteral("no se grabó"))) << a.ultimoError().toStdString();
    EXPECT_EQ(valor(base->conexion(), QStringLiteral("Select AsiLeyenda From cceAsientos Where AsiID = ?"), {id}).toString(),
              QStringLiteral("antes del corte"));
    EXPECT_EQ(filasHistorial(base->conexion(), id), 1);
    EXPECT_EQ(a.GrabarTodo(), id) << a.ultimoError().toStdString();
    EXPECT_EQ(filasHistorial(base->conexion(), id), 2);
}

// Notices reach the other sessions with "entry|company|user"; a refused write sends none, a
// session is not told of its own writes, and a session that reconnected still hears each once.
TEST_F(MultiusuarioPostgreSQL, AvisosDeEscriturasDeOtrasSesiones)
{
    auto uno = AbrirBaseDelPrograma(base->direccion());
    auto dos = AbrirBaseDelPrograma(base->direccion());
    QStringList recibidos;
    ASSERT_TRUE(dos->Escuchar(QString::fromLatin1(HistorialAsiento::kCanal), [&](const QString &carga) { recibidos << carga; }));

    // Books in another schema of the same database (as every test here keeps its own) are not
    // heard: their entries are numbered from 1 too.
    BaseDePrueba vecina(Motor::PostgreSQL, BaseDePrueba::Contenido::Demo);
    auto deLaVecina = AbrirBaseDelPrograma(vecina.direccion());
    AsientoDatos ajeno(*deLaVecina);
    ajeno.FijarUsuario(Demo::kUsuarioAdministrador);
    ASSERT_GT(Nuevo(ajeno, QStringLiteral("en otro esquema"), 7), 0);
    auto esperar = [&](int cuantos) {
        QTest::qWaitFor([&] { return recibidos.size() >= cuantos; }, 2000);
    };

    AsientoDatos a(*uno);
    a.FijarUsuario(Demo::kUsuarioContador);
    const qint32 id = Nuevo(a, QStringLiteral("aviso"), 10);
    ASSERT_GT(id, 0);
    esperar(1);
    EXPECT_EQ(recibidos, QStringList{QStringLiteral("%1|1|4").arg(id)});

    AsientoDatos viejo(*uno);
    viejo.FijarUsuario(Demo::kUsuarioConsulta);
    ASSERT_TRUE(viejo.CargarAsiento(id));
    AsientoDatos propio(*dos);
    propio.FijarUsuario(Demo::kUsuarioAdministrador);
    ASSERT_TRUE(propio.CargarAsiento(id));
    propio.Cabezal().Leyenda = QStringLiteral("de la sesión que escucha");
    ASSERT_EQ(propio.GrabarTodo(), id);
    viejo.Cabezal().Leyenda = QStringLiteral("tarde");
    EXPECT_FALSE(viejo.Grabar());
    ASSERT_EQ(viejo.ultimoResultado(), Resultado::Modificado);

    // Notices come in the order of the writes: once this one is in, any other would be too.
    AsientoDatos ultimo(*uno);
    ultimo.FijarUsuario(Demo::kUsuarioSinPermisos);
    const qint32 otro = Nuevo(ultimo, QStringLiteral("cierre de la prueba"), 5);
    esperar(2);
    EXPECT_EQ(recibidos, (QStringList{QStringLiteral("%1|1|4").arg(id), QStringLiteral("%1|1|3").arg(otro)}));

    const qint64 sesion = valor(*dos, QStringLiteral("Select pg_backend_pid()")).toLongLong();
    ASSERT_TRUE(valor(base->conexion(), QStringLiteral("Select pg_terminate_backend(%1, 3000)").arg(sesion)).toBool());
    EXPECT_EQ(valor(*dos, QStringLiteral("Select Count(*) From cceAsientos")).toInt(), 2); // reconnects
    const qint32 tercero = Nuevo(ultimo, QStringLiteral("tras reconectar"), 5);
    esperar(3);
    EXPECT_EQ(recibidos.mid(2), QStringList{QStringLiteral("%1|1|3").arg(tercero)});
}

// What the history shows of a write: state names, no change between an empty authoriser
// and 0, lines by account code with their amounts.
TEST(HistorialEnPalabras, DiferenciasLegibles)
{
    auto linea = [](const char *codigo, bool debe, double importe) {
        QJsonObject l{{QStringLiteral("Cuenta"), 7}, {QStringLiteral("Codigo"), QString::fromLatin1(codigo)},
                      {QStringLiteral("Debe"), debe ? QJsonValue(importe) : QJsonValue()},
                      {QStringLiteral("Haber"), debe ? QJsonValue() : QJsonValue(importe)}};
        return l;
    };
    const QJsonObject antes{{QStringLiteral("Estado"), 0}, {QStringLiteral("Leyenda"), QStringLiteral("a")},
                            {QStringLiteral("Autoriza"), QJsonValue()},
                            {QStringLiteral("Lineas"), QJsonArray{linea("1.1.01", true, 68500), linea("4.1.01", false, 68500)}}};
    QJsonObject despues = antes;
    despues.insert(QStringLiteral("Estado"), 1);
    despues.insert(QStringLiteral("Autoriza"), 0);
    despues.insert(QStringLiteral("Lineas"), QJsonArray{linea("1.1.01", true, 70000.5), linea("4.1.01", false, 68500)});
    const QLocale l;
    EXPECT_EQ(HistorialAsiento::Diferencias(antes, despues),
              (QStringList{QStringLiteral("Estado: Borrador → Registrado"),
                           QStringLiteral("− cuenta 1.1.01 debe ") + l.toString(68500.0, 'f', 2),
                           QStringLiteral("+ cuenta 1.1.01 debe ") + l.toString(70000.5, 'f', 2)}));
    EXPECT_TRUE(HistorialAsiento::Diferencias(antes, antes).isEmpty());
}

} // namespace
