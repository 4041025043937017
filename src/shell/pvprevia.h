#pragma once

#include "export/exportacion.h"
#include "export/impresiongrilla.h"
#include "export/paginasgrilla.h"

#include <QObject>
#include <QPrinter>

#include <functional>
#include <memory>

class QPrintPreviewDialog;
class QWidget;

// The print-preview view: renders the grid into pages on its printer, shows them in a
// preview window, prints them, and keeps the page set-up the user chose for the next time.
// A PDF path given to it makes printing write that file without asking. The printer is
// made the first time it is needed: making it loads the platform's print support, which a
// document that never prints does not pay for at start-up.
class pvPrevia final : public QObject, public VistaImpresion
{
    Q_OBJECT
public:
    // texto: the catalogue, for the pages' foot.
    pvPrevia(QWidget *dueno, std::function<QString(int)> texto);
    ~pvPrevia() override;

    int ModoPagina() const override;
    int AnchoPagina() const override;
    std::pair<int, int> Margenes(int par) const override;
    void FijarTitulo(const QString &titulo) override { m_titulo = titulo; }
    void Preparar() override;
    void FijarOrigen(const FuenteGrilla &grilla) override { m_origen = &grilla; }
    void Renderizar() override;
    bool Imprimir() override;
    void ConfigurarPagina() override;
    void FijarVisible(bool visible) override;

    QPrinter &impresora() const;
    void FijarSalidaPDF(const QString &ruta) { m_salidaPDF = ruta; }
    const PaginasGrilla &paginas() const { return m_paginas; }
    QString titulo() const { return m_titulo; }

private:
    QWidget *m_dueno;
    std::function<QString(int)> m_texto;
    mutable std::unique_ptr<QPrinter> m_impresora;
    PaginasGrilla m_paginas;
    const FuenteGrilla *m_origen = nullptr;
    QString m_titulo;
    QString m_salidaPDF;
    QPrintPreviewDialog *m_dialogo = nullptr;
};

// The platform's save-file dialog, asking before it replaces a file.
class SelectorArchivoQt final : public SelectorArchivo
{
public:
    explicit SelectorArchivoQt(QWidget *dueno)
        : m_dueno(dueno)
    {
    }
    QString ElegirArchivoGuardar(const QString &titulo, const QString &carpeta, const QString &nombre,
                                 const QString &filtro) override;

private:
    QWidget *m_dueno;
};
