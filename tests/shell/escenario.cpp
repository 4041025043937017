#include "escenario.h"

#include "entries/historialasiento.h"

#include <QAbstractItemModel>

std::ostream &operator<<(std::ostream &os, const AsientoEnBase &a)
{
    os << a.cabezal.join(QLatin1Char('|')).toStdString();
    for (const QStringList &l : a.lineas)
        os << "\n  " << l.join(QLatin1Char('|')).toStdString();
    return os;
}

Escenario::Escenario()
    : m_base(GetParam(), BaseDePrueba::Contenido::Demo)
{
    reiniciar();
}

void Escenario::reiniciar()
{
    m_doc.reset();
    m_doc = Documento(m_host, m_mensajes, m_carpeta, 1);
    QApplication::setActiveWindow(m_doc.get());
    QApplication::processEvents();
}

std::unique_ptr<lumIngAsiento> Escenario::Documento(HostDePrueba &host, MensajesGuionados &mensajes, const QTemporaryDir &carpeta,
                                                    int usuario)
{
    return DocumentoIniciado(m_base, host, mensajes, m_busqueda, carpeta, usuario);
}

std::unique_ptr<lumIngAsiento> DocumentoIniciado(const BaseDePrueba &base, HostDePrueba &host, MensajesGuionados &mensajes,
                                                 ServicioBusquedaCuentas &busqueda, const QTemporaryDir &carpeta, int usuario,
                                                 const QString &opciones)
{
    host.base = QStringLiteral("x?psidusuario=%1|psidempresa=1|psckey=lum01|pskeyinit=%1|pstempdir=").arg(usuario) + carpeta.path()
              + opciones;
    EntornoDocumento d;
    d.host = &host;
    d.mensajes = &mensajes;
    d.busquedaCuentas = &busqueda;
    d.ajustes.archivoAjustes = carpeta.filePath(QStringLiteral("a.ini"));
    d.ajustes.baseDatos = base.direccion();
    d.ajustes.esperaBloqueoMs = 500; // a write held up by another session gives up soon
    d.proceso = ProcesoDePrueba(base);
    auto doc = std::make_unique<lumIngAsiento>(std::move(d));
    doc->resize(1000, 420);
    doc->show();
    doc->Iniciar();
    return doc;
}

QList<int> FilasCabezal(lumIngAsiento &doc)
{
    QList<int> filas;
    for (int r = doc.grilla().FilasFijas(); r < doc.grilla().Filas(); ++r)
        if (doc.asientos().EsFilaCabezal(r) && doc.asientos().IdDeFila(r) > 0)
            filas << r;
    return filas;
}

void Escenario::otroCambia(qint32 id, const QString &leyenda)
{
    AsientoDatos otro(m_base.conexion());
    otro.FijarUsuario(Demo::kUsuarioContador);
    ASSERT_TRUE(Bien(otro.CargarAsiento(id)));
    otro.Cabezal().Leyenda = leyenda;
    ASSERT_TRUE(Bien(otro.Grabar()));
}

QStringList Operaciones(Conexion &conexion, qint32 id, bool conUsuario)
{
    QStringList l;
    for (const HistorialAsiento::Fila &f : *HistorialAsiento::Leer(conexion, id))
        l << (conUsuario ? QStringLiteral("%1:%2").arg(f.operacion).arg(f.usuario) : f.operacion);
    return l;
}

void AceptarLinea(lumIngAsiento &doc, MensajesGuionados &mensajes)
{
    enter(doc.editor()->campo(lumERAsiento::kImporte));
    auto *autoriza = doc.findChild<QComboBox *>(QStringLiteral("cfAutoriza"));
    if (foco() == autoriza) {
        EXPECT_EQ(mensajes.mostrados.value(mensajes.mostrados.size() - 1), Dicho("advertencia", 1953));
        mensajes.mostrados.removeLast();
        autoriza->setCurrentIndex(0);
        enter(autoriza);
    }
}

::testing::AssertionResult Escenario::mostrarAlFinal(qint32 id)
{
    return Bien(CargarAsientoEnGrilla(m_doc->asientos(), *m_doc->proceso().conexion, id, m_doc->grilla().Filas() - 1));
}

void Escenario::abrir(int fila)
{
    m_doc->grid()->FijarFilaActual(fila);
    m_doc->grid()->setFocus();
    enter(m_doc->grid());
}

QStringList Escenario::filasVistas(int desde, int hasta) const
{
    QStringList filas;
    const QAbstractItemModel *m = m_doc->grid()->model();
    const int fijas = m_doc->grilla().FilasFijas();
    for (int r = desde; r <= hasta; ++r) {
        QStringList celdas;
        for (int c = 0; c < m->columnCount(); ++c)
            celdas << m->data(m->index(r - fijas, c), Qt::DisplayRole).toString().simplified();
        filas << celdas.join(QLatin1Char('|'));
    }
    return filas;
}

QStringList Escenario::filasVistas(qint32 id) const
{
    const int r = filaDe(id);
    if (r < 0)
        return {};
    return filasVistas(r, m_doc->asientos().UltimaFilaAsiento(r));
}

bool Escenario::editorALaVista() const
{
    const QWidget *e = m_doc->editor();
    const QWidget *vista = m_doc->grid()->viewport();
    return e->isVisible() && e->geometry().top() >= 0 && e->geometry().bottom() <= vista->height() + 2;
}

AsientoEnBase Escenario::enBase(qint32 id)
{
    AsientoEnBase a;
    const QStringList texto = AsientoComoTexto(m_base.conexion(), id, &a.sello);
    if (!texto.isEmpty())
        a.cabezal = texto[0].split(u'|');
    for (const QString &linea : texto.mid(1))
        a.lineas << linea.split(u'|');
    return a;
}

qint32 Escenario::asientoSimple()
{
    vista(Vista::kPrimerMes);
    const QList<qint32> candidatos = ids(QStringLiteral("AsiEstado = 1 And AsiTipo Between 1 And 5 And AsiVerificado Is Null"
                                                       " And AsiID In (Select ACuIDAsiento From cceAsientoCuenta"
                                                       " Group By ACuIDAsiento Having Count(*) = 2)"
                                                       " And AsiID Not In (Select ACuIDAsiento From cceAsientoCuenta INNER JOIN"
                                                       " cceCuentas ON CueID = ACuCuenta Where CueMoneda <> 1"
                                                       " Or CueFechaCerrada Is Not Null)"));
    for (qint32 id : candidatos)
        if (filaDe(id) > 0 && m_doc->asientos().UltimaFilaAsiento(filaDe(id)) + 1 < m_doc->grilla().Filas() - 1)
            return id;
    if (candidatos.isEmpty())
        return 0;
    // None in the view: the last one is put above the first entry of the grid.
    EXPECT_TRUE(Bien(CargarAsientoEnGrilla(m_doc->asientos(), *m_doc->proceso().conexion, candidatos.last(),
                                           m_doc->grilla().FilasFijas())));
    return candidatos.last();
}

qint32 Escenario::asientoAlFinal(qint16 estado, const QString &leyenda, const QList<std::tuple<const char *, bool, double>> &lineas,
                                 qint16 libro)
{
    const qint32 id = GrabarAsientoDePrueba(m_base, estado, BaseDePrueba::Hoy().addDays(-1), leyenda, libro, lineas);
    EXPECT_TRUE(mostrarAlFinal(id));
    return id;
}

void Escenario::nuevoConTeclado(const QString &leyenda, const QString &debe, const QString &haber, const QString &importe)
{
    QTest::keyClick(m_doc->grid(), Qt::Key_N, Qt::ControlModifier);
    ASSERT_GT(m_doc->FilaEdicion(), 0);
    ASSERT_TRUE(editorALaVista()) << editor()->geometry().top() << " " << editor()->isVisible() << " " << m_doc->grid()->viewport()->height();
    ASSERT_EQ(foco(), m_doc->campoFecha()) << (foco() ? foco()->objectName().toStdString() : "none");
    enter(m_doc->campoFecha());
    ASSERT_EQ(foco(), m_doc->listaLibros());
    enter(m_doc->listaLibros());
    ASSERT_EQ(foco(), m_doc->campoLeyenda());
    escribir(m_doc->campoLeyenda(), leyenda);
    enter(m_doc->campoLeyenda());
    if (foco() != editor()->campoCuenta(true)) {
        autoriza()->setCurrentIndex(0);
        enter(autoriza());
    }
    ASSERT_EQ(foco(), editor()->campoCuenta(true));
    escribir(editor()->campoCuenta(true), debe);
    enter(editor()->campoCuenta(true));
    ASSERT_EQ(foco(), editor()->campo(lumERAsiento::kImporte));
    escribir(editor()->campo(lumERAsiento::kImporte), importe);
    enter(editor()->campo(lumERAsiento::kImporte));
    ASSERT_TRUE(editorALaVista());
    enter(editor()->campoCuenta(true));
    escribir(editor()->campoCuenta(false), haber);
    enter(editor()->campoCuenta(false));
    enter(editor()->campo(lumERAsiento::kImporte));
}
