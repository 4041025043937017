#pragma once

#include "opciones.h"
#include "shell/comandoshost.h"
#include "shell/lumingasiento.h"

#include <QMainWindow>
#include <QHash>
#include <QPointer>

#include <memory>

class QStackedWidget;
class QTextBrowser;
class QDialog;
class ServicioMensajes;

// The host of the document: builds the base address, holds the document in its "centro"
// frame and acts on the document's command addresses (error and access-denied pages in
// the frame, help pages in a viewer). Every address received is written to standard error.
class VentanaHost : public QMainWindow, public ContenedorHost
{
    Q_OBJECT
public:
    VentanaHost(const OpcionesHost &opciones, const QString &baseDatos, const QString &archivoAjustes,
                const QString &carpetaDatos, bool desatendido);
    ~VentanaHost() override;
    // Closing the window ends an edit first; the window stays when the user goes back to it.
    void closeEvent(QCloseEvent *evento) override;

    QString BaseHRef() const override { return m_baseHRef; }
    void Navegar(const QString &direccion, const QString &marco) override;

    lumIngAsiento *documento() const { return m_documento; }
    QWidget *paginaActual() const;
    QString ultimaAyuda() const { return m_ultimaAyuda; }

    // A page in the frame that tells what went wrong (also used before a document exists).
    void MostrarError(const QString &descripcion);
    // The window's title in the document's language, once the document has loaded it.
    void AsignarTitulo();

private:
    void actuar(const QString &direccion);
    void MostrarAccesoDenegado(const QString &aplicacion);
    void MostrarAyuda(const QString &pagina);
    QTextBrowser *pagina(const QString &nombre, const QString &html);
    QString texto(int numero) const;

    static constexpr char kClaveGeometria[] = "Ventana/Geometria";
    QString m_baseHRef;
    QString m_archivoAjustes;
    std::unique_ptr<ServicioMensajes> m_mensajes;
    std::shared_ptr<Proceso> m_proceso = std::make_shared<Proceso>(); // shared by the documents it opens
    QStackedWidget *m_centro = nullptr;
    QPointer<lumIngAsiento> m_documento;
    QPointer<QDialog> m_visorAyuda;
    QString m_ultimaAyuda;
    int m_idioma = 0;                          // the language asked for at start-up, 0: none
    mutable QHash<int, QString> m_catalogo;    // its texts, until a document loads one
};
