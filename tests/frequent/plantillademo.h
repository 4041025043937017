#pragma once

// A frequent-entry template of the demo company written straight through the data service:
// legend "<name> del mes", default book, the administrator's; scheduled from agenda when one
// is given. Answers its id.
#include "comun/asientosdeprueba.h"
#include "entries/frecuentesdatos.h"
#include "store/basedemo.h"

#include <gtest/gtest.h>

inline qint32 PlantillaDemo(BaseDePrueba &base, const QString &nombre, const QList<LineaDePrueba> &lineas, const QDate &agenda = {},
                            qint32 empresa = Demo::kEmpresa)
{
    MovimientoFrecuente m;
    m.Empresa = empresa;
    m.Nombre = nombre;
    m.Leyenda = nombre + QStringLiteral(" del mes");
    m.Libro = Demo::kLibroDiario;
    m.Usuario = Demo::kUsuarioAdministrador;
    m.Fecha = agenda.isValid() ? agenda : BaseDePrueba::Hoy();
    if (agenda.isValid()) {
        m.Recurrencia = QString::fromLatin1(FrecuentesDatos::kRecurrenciaAgendado);
        m.FechaProxima = agenda;
    }
    m.Lineas = LineasDePrueba(base, lineas);
    m.Monedas = QVector<qint16>(m.Lineas.size(), 0);
    EXPECT_TRUE(Bien(FrecuentesDatos(base.conexion()).Guardar(m)));
    return m.MFrID;
}
