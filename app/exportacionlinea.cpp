#include "exportacionlinea.h"

#include "export/escritores.h"
#include "export/exportacion.h"
#include "export/fuentegrilla.h"
#include "export/impresiongrilla.h"
#include "export/paginasgrilla.h"

#include "currency/catalogomonedas.h"
#include "editing/sesion.h"
#include "entries/vistas.h"
#include "search/consultabusqueda.h"
#include "services/cuentasdatos.h"
#include "store/conexion.h"
#include "store/fallo.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextStream>


namespace {

constexpr int kPdf = 4;

// The print-preview view's part a PDF file needs: pages laid out on the writer's page.
class VistaPDF final : public VistaImpresion
{
public:
    // pie: the pages' foot, "%1" the page and "%2" the count.
    VistaPDF(QPdfWriter &escritor, const QString &pie)
        : m_escritor(escritor)
        , m_pie(pie)
    {
    }
    int ModoPagina() const override { return m_escritor.pageLayout().orientation() == QPageLayout::Portrait ? 0 : 1; }
    int AnchoPagina() const override { return int(m_escritor.pageLayout().fullRect(QPageLayout::Point).width() * 20); }
    std::pair<int, int> Margenes(int) const override
    {
        const QMarginsF m = m_escritor.pageLayout().margins(QPageLayout::Point);
        return {int(m.left() * 20), int(m.right() * 20)};
    }
    void FijarTitulo(const QString &titulo) override { m_titulo = titulo; }
    void Preparar() override { m_paginas.Limpiar(); }
    void FijarOrigen(const FuenteGrilla &g) override { m_origen = &g; }
    void Renderizar() override { m_paginas.Componer(*m_origen, m_escritor.pageLayout(), m_titulo, m_pie); }
    bool Imprimir() override { return m_ok = m_paginas.Imprimir(m_escritor); }
    void ConfigurarPagina() override {}
    void FijarVisible(bool) override {}

    bool ok() const { return m_ok; }
    int paginas() const { return m_paginas.Paginas(); }

private:
    QPdfWriter &m_escritor;
    PaginasGrilla m_paginas;
    const FuenteGrilla *m_origen = nullptr;
    QString m_titulo;
    QString m_pie;
    bool m_ok = false;
};

} // namespace

int PedidoExportacion::Formato() const
{
    const QString extension = QFileInfo(archivo).suffix().toLower();
    if (extension == QLatin1String("csv"))
        return ExportacionGrilla::CSV;
    if (extension == QLatin1String("xlsx"))
        return ExportacionGrilla::Libro;
    if (extension == QLatin1String("htm") || extension == QLatin1String("html"))
        return ExportacionGrilla::HTML;
    if (extension == QLatin1String("pdf"))
        return kPdf;
    return 0;
}

bool PedidoExportacion::SinFuentes() const
{
    const int formato = Formato();
    return formato == ExportacionGrilla::CSV || formato == ExportacionGrilla::Libro;
}

QString PedidoExportacion::Validar(const std::function<QString(int)> &texto) const
{
    if (archivo.isEmpty())
        return texto(2157);
    if (Formato() == 0)
        return texto(2158).arg(archivo);
    const int formas = (vista != -100 ? 1 : 0) + (mes.isValid() ? 1 : 0) + (hayCriterios ? 1 : 0);
    if (formas == 0)
        return texto(2159);
    if (formas > 1)
        return texto(2160);
    if (!criterios.prmFInit.isEmpty() && !criterios.prmFEnd.isEmpty() && criterios.prmFInit > criterios.prmFEnd)
        return texto(2161).arg(criterios.prmFInit, criterios.prmFEnd);
    if (vista != -100 && (vista < Vista::kUltimos5 || vista > Vista::kUltimos15Dias))
        return texto(2162);
    return {};
}

int ExportarDesdeLinea(const PedidoExportacion &pedido, Conexion &conexion, qint32 empresa,
                       const std::function<QString(int)> &texto, QTextStream &errores,
                       const std::function<void(const QString &)> &progreso)
{
    auto fallar = [&](const QString &mensaje) {
        errores << mensaje << Qt::endl;
        return 1;
    };
    if (const QString malo = pedido.Validar(texto); !malo.isEmpty())
        return fallar(malo);

    ParametrosSistema parametros;
    ConfigEmpresa config;
    bool leida = false;
    if (const auto f = CargarParametrosSistema(conexion, parametros))
        return fallar(texto(f->numeroTexto) + QStringLiteral(" ") + f->detalle);
    if (const auto f = LeerConfigEmpresa(conexion, empresa, config, leida))
        return fallar(texto(f->numeroTexto) + QStringLiteral(" ") + f->detalle);
    if (!leida)
        return fallar(texto(2163).arg(empresa));

    CatalogoMonedas monedas;
    ContextoAsientos ctx;
    ctx.reloj = conexion.relojCompartido();
    Grilla grilla;
    AsientosGrilla asientos(grilla, ctx);
    QString sql;
    int vista = pedido.vista;
    if (const auto f = monedas.CargarMonedas(conexion))
        return fallar(texto(f->numeroTexto) + QStringLiteral(" ") + f->detalle);
    monedas.FijarMonedaContabilidad(config.monedaContabilidad);
    ctx.monedas = &monedas;
    ctx.monedaContabilidad = config.monedaContabilidad;
    ctx.mostrarCodigoCta = config.mostrarCodigoCta;
    ctx.formatoFecha = pedido.formatoFecha;
    ctx.texto = texto;
    ctx.empresa = empresa;
    ctx.delimitadorFecha = parametros.delimitadorFecha;
    ctx.patronFecha = parametros.formatoFecha;
    if (pedido.SinFuentes())
        ctx.rellenoFijo = 0; // the date and the legend go in cells of their own
    PrepararGrillaAsientos(grilla, texto(1060));
    const QString mascara = monedas.DatoMoneda(0, 4).toString();
    grilla.FijarFormatoColumna(2, mascara);
    grilla.FijarFormatoColumna(3, mascara);

    if (pedido.mes.isValid()) {
        vista = Vista::kPrimerMes;
    } else if (pedido.hayCriterios) {
        CriteriosBusqueda c = pedido.criterios;
        if (!pedido.cuenta.isEmpty()) {
            const auto cuenta = CuentasDatos::IdPorCodigo(conexion, empresa, pedido.cuenta);
            if (!cuenta)
                return fallar(cuenta.fallo().detalle);
            c.prmCta = *cuenta;
            if (c.prmCta < 0)
                return fallar(texto(2164).arg(pedido.cuenta));
            if (c.prmCta == 0)
                return fallar(texto(2165).arg(pedido.cuenta).arg(empresa));
            c.prmPry = c.prmDep = CriteriosBusqueda::kCualquiera; // the account's lines of every project and department
        }
        if (const auto f = SqlBusqueda(c, empresa, parametros.delimitadorFecha, parametros.formatoFecha, sql))
            return fallar(texto(2166).arg(f->detalle));
        vista = Vista::kPersonalizada;
    }

    if (progreso)
        progreso(texto(2167));
    const QDate primerDia = pedido.mes.isValid() ? QDate(pedido.mes.year(), pedido.mes.month(), 1) : QDate();
    const int formato = pedido.Formato();
    int cuantos = 0;
    QElapsedTimer reloj;
    reloj.start();
    auto avance = [&](int hechas, int total) {
        if (progreso && reloj.elapsed() > 500)
            progreso(total > 0 ? QStringLiteral("Exportando: %1 de %2 filas").arg(hechas).arg(total)
                               : QStringLiteral("Exportando: %1 filas").arg(hechas));
    };
    std::optional<Fallo> error;
    if (formato == kPdf) {
        // Pages are laid out from the whole grid.
        if (const auto f = CargarAsientos(asientos, conexion, vista, sql, conexion.reloj().Hoy(), primerDia))
            return fallar(texto(f->numeroTexto) + QStringLiteral(" ") + f->detalle);
        for (int r = grilla.FilasFijas(); r < grilla.Filas(); ++r)
            cuantos += EsFilaCabezal(grilla, r) ? 1 : 0;
        // Laid out as the print command does it, written beside the final name and renamed.
        QSaveFile archivo(pedido.archivo);
        if (!archivo.open(QIODevice::WriteOnly))
            return fallar(texto(1938) + QStringLiteral(" ") + Escritores::ConArchivo(pedido.archivo, archivo.errorString()));
        {
            QPdfWriter escritor(&archivo);
            escritor.setPageSize(QPageSize(QPageSize::A4));
            escritor.setPageOrientation(QPageLayout::Landscape);
            escritor.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
            escritor.setTitle(texto(1001));
            escritor.setCreator(QStringLiteral("asientos"));
            VistaPDF pdf(escritor, texto(2133));
            ImpresionGrilla impresion(grilla, pdf, {});
            impresion.MnuPriPrint(texto(1001), config.NombreEmpresa);
            if (!pdf.ok())
                error = ExportacionGrilla::EnPalabras({1938, texto(2168)}, pedido.archivo, texto);
        }
        if (!error)
            if (const auto fallo = Escritores::Confirmar(archivo))
                error = ExportacionGrilla::EnPalabras(*fallo, pedido.archivo, texto);
    } else {
        // The file is written as the entries are read, a part at a time: memory stays the
        // same however many there are.
        LecturaPorPartes lectura(asientos, conexion);
        auto siguiente = [&]() -> Resultado<bool> {
            const auto leidos = lectura.Siguiente(pedido.asientosPorParte);
            if (!leidos)
                return leidos.fallo();
            cuantos += *leidos;
            return *leidos > 0;
        };
        EntornoExportacion entorno;
        entorno.texto = texto;
        entorno.formatoFecha = pedido.formatoFecha;
        entorno.empresa = config.NombreEmpresa;
        entorno.edicion = pedido.edicion;
        entorno.reloj = conexion.relojCompartido();
        GrillaEnPantalla g;
        g.grilla = &grilla;
        g.titulo = texto(1001);
        // A read that fails half way leaves no file: each writer lets go of its own.
        error = lectura.Empezar(vista == Vista::kPersonalizada ? sql : SqlVista(vista, conexion.reloj().Hoy(), primerDia, ctx));
        if (!error) {
            const auto primera = siguiente();
            error = primera ? ExportacionGrilla::Escribir(formato, g, pedido.archivo, entorno, avance, siguiente)
                            : std::optional<Fallo>(primera.fallo());
        }
        if (error && error->deLaBase)
            error->numeroTexto = 1917;
    }
    if (error)
        return fallar(texto(error->numeroTexto) + QStringLiteral(" ") + error->detalle);
    if (progreso)
        progreso(texto(2169).arg(cuantos).arg(pedido.archivo));
    return 0;
}
