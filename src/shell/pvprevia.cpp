#include "pvprevia.h"

#include <QDir>
#include <QFileDialog>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>

#include <cmath>

namespace {

int Twips(double puntos)
{
    return int(std::lround(puntos * 20));
}

} // namespace

pvPrevia::pvPrevia(QWidget *dueno, std::function<QString(int)> texto)
    : QObject(dueno)
    , m_dueno(dueno)
    , m_texto(std::move(texto))
{
    setObjectName(QStringLiteral("pvPrevia"));
}

pvPrevia::~pvPrevia() = default;

QPrinter &pvPrevia::impresora() const
{
    if (!m_impresora) {
        m_impresora = std::make_unique<QPrinter>(QPrinter::HighResolution);
        // Six columns of a journal fit a landscape page better; the page set-up changes it.
        m_impresora->setPageSize(QPageSize(QPageSize::A4));
        m_impresora->setPageOrientation(QPageLayout::Landscape);
        m_impresora->setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    }
    return *m_impresora;
}

int pvPrevia::ModoPagina() const
{
    return impresora().pageLayout().orientation() == QPageLayout::Portrait ? 0 : 1;
}

int pvPrevia::AnchoPagina() const
{
    return Twips(impresora().pageLayout().fullRect(QPageLayout::Point).width());
}

std::pair<int, int> pvPrevia::Margenes(int) const
{
    // The page set-up keeps one set of margins, already turned with the page.
    const QMarginsF m = impresora().pageLayout().margins(QPageLayout::Point);
    return {Twips(m.left()), Twips(m.right())};
}

void pvPrevia::Preparar()
{
    m_paginas.Limpiar();
    m_origen = nullptr;
}

void pvPrevia::Renderizar()
{
    if (m_origen)
        m_paginas.Componer(*m_origen, impresora().pageLayout(), m_titulo, m_texto(2133));
}

bool pvPrevia::Imprimir()
{
    impresora().setDocName(m_titulo.section(QLatin1Char('|'), 0, 0));
    if (!m_salidaPDF.isEmpty()) {
        impresora().setOutputFormat(QPrinter::PdfFormat);
        impresora().setOutputFileName(m_salidaPDF);
    } else {
        QPrintDialog dialogo(&impresora(), m_dueno);
        dialogo.setWindowTitle(m_titulo.section(QLatin1Char('|'), 0, 0));
        if (dialogo.exec() != QDialog::Accepted)
            return false;
    }
    return m_paginas.Imprimir(impresora());
}

void pvPrevia::ConfigurarPagina()
{
    QPageSetupDialog dialogo(&impresora(), m_dueno);
    dialogo.exec();
}

void pvPrevia::FijarVisible(bool visible)
{
    if (!visible) {
        if (m_dialogo)
            m_dialogo->reject();
        return;
    }
    if (m_dialogo)
        return;
    QPrintPreviewDialog dialogo(&impresora(), m_dueno);
    dialogo.setObjectName(QStringLiteral("pvPrevia"));
    dialogo.setWindowTitle(m_titulo.section(QLatin1Char('|'), 0, 0));
    dialogo.resize(900, 700);
    // The preview lets the user turn the page or change its size: the pages are laid out
    // again on the printer as it is when they are painted.
    connect(&dialogo, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter *impresora) {
        if (m_origen)
            m_paginas.Componer(*m_origen, impresora->pageLayout(), m_titulo, m_texto(2133));
        m_paginas.Imprimir(*impresora);
    });
    m_dialogo = &dialogo;
    dialogo.exec();
    m_dialogo = nullptr;
    m_origen = nullptr;
}

QString SelectorArchivoQt::ElegirArchivoGuardar(const QString &titulo, const QString &carpeta, const QString &nombre,
                                                const QString &filtro)
{
    QFileDialog dialogo(m_dueno, titulo, QDir(carpeta).filePath(nombre), filtro);
    dialogo.setAcceptMode(QFileDialog::AcceptSave);
    dialogo.setFileMode(QFileDialog::AnyFile);
    dialogo.setOption(QFileDialog::DontConfirmOverwrite, false);
    const QString extension = nombre.section(QLatin1Char('.'), -1);
    if (nombre.contains(QLatin1Char('.')))
        dialogo.setDefaultSuffix(extension);
    if (dialogo.exec() != QDialog::Accepted || dialogo.selectedFiles().isEmpty())
        return {};
    return dialogo.selectedFiles().constFirst();
}
