// The user's recent frequent entries: kept latest first, without repeats, at most ten; the
// menu lists those that still exist and are not scheduled; a list that cannot be read is
// never written over.
#include "documentosinventana.h"

#include "comun/conexionespia.h"
#include "frequent/plantillademo.h"

#include "editing/frecuentesrecientes.h"

namespace {

class Recientes : public DocumentoSinVentana
{
protected:
    qint32 plantilla(const QString &nombre, bool agendada = false, qint32 empresa = Demo::kEmpresa)
    {
        return PlantillaDemo(m_base, nombre, {{"1.1.01", true, 10}}, agendada ? BaseDePrueba::Hoy() : QDate(), empresa);
    }
};

TEST_P(Recientes, ElUltimoPrimeroSinRepetirHastaDiez)
{
    FrecuentesRecientes recientes(m_datos);
    EXPECT_TRUE(recientes.Leer()->isEmpty());
    for (const qint32 id : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 5, 0, -3})
        ASSERT_FALSE(recientes.Agregar(id));
    EXPECT_EQ(*recientes.Leer(), (QList<qint32>{5, 12, 11, 10, 9, 8, 7, 6, 4, 3}));
    // Another user's list is their own.
    DatosDocumento otro = m_datos;
    otro.usuario = Demo::kUsuarioContador;
    EXPECT_TRUE(FrecuentesRecientes(otro).Leer()->isEmpty());
}

TEST_P(Recientes, ElMenuSoloConLasQueExistenSinAgendaDeLaEmpresa)
{
    const qint32 alquiler = plantilla(QStringLiteral("Alquiler"));
    const qint32 agendada = plantilla(QStringLiteral("Cuota"), true);
    const qint32 ajena = plantilla(QStringLiteral("De otra empresa"), false, 2);
    const qint32 luz = plantilla(QStringLiteral("Luz"));
    FrecuentesRecientes recientes(m_datos);
    EXPECT_TRUE(recientes.CargarFrecuentesRecientes()->isEmpty()); // none yet: nothing to look up
    for (const qint32 id : {alquiler, agendada, ajena, luz + 100, luz})
        ASSERT_FALSE(recientes.Agregar(id));
    using Item = std::pair<QString, qint32>;
    EXPECT_EQ(*recientes.CargarFrecuentesRecientes(), (QList<Item>{{QStringLiteral("Luz"), luz}, {QStringLiteral("Alquiler"), alquiler}}));
}

// A read that fails while writes would work: the failure is answered, with the database's
// detail for the caller to tell, and nothing is written over the list kept.
TEST_P(Recientes, UnaListaQueNoSePuedeLeerNoSePisa)
{
    ASSERT_FALSE(FrecuentesRecientes(m_datos).Agregar(7));
    ASSERT_FALSE(FrecuentesRecientes(m_datos).Agregar(8));
    Espia espia(m_base.conexion());
    espia.fallar = [](const QString &sql) { return sql.startsWith(QLatin1String("Select")) && sql.contains(QLatin1String("genConfigUsuario")); };
    DatosDocumento conFalla = m_datos;
    auto proceso = std::make_shared<Proceso>(*m_datos.proceso);
    proceso->conexion = std::shared_ptr<Conexion>(&espia, [](Conexion *) {});
    conFalla.proceso = proceso;
    const auto fallo = FrecuentesRecientes(conFalla).Agregar(9);
    ASSERT_TRUE(fallo);
    EXPECT_TRUE(fallo->deLaBase);
    EXPECT_EQ(fallo->numeroTexto, 0);
    EXPECT_TRUE(fallo->detalle.contains(QStringLiteral("falla preparada"))) << fallo->detalle.toStdString();
    const auto menu = FrecuentesRecientes(conFalla).CargarFrecuentesRecientes();
    ASSERT_FALSE(menu);
    EXPECT_TRUE(menu.fallo().deLaBase);
    EXPECT_EQ(*FrecuentesRecientes(m_datos).Leer(), (QList<qint32>{8, 7}));
}

INSTANCIAR_EN_MOTORES(Recientes);

} // namespace
