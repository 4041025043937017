#include "bibliotecalibro.h"

#include <QLibrary>

#include <type_traits>

const BibliotecaLibro &Xlsx()
{
    static const BibliotecaLibro biblioteca = [] {
        BibliotecaLibro b;
        // Never unloaded: a QLibrary leaves the library loaded when it goes.
        QLibrary libreria(QStringLiteral(ASIENTOS_XLSXWRITER));
        if (!libreria.load()) {
            b.error = libreria.errorString();
            return b;
        }
        auto resolver = [&](auto &funcion, const char *nombre) {
            funcion = reinterpret_cast<std::remove_reference_t<decltype(funcion)>>(libreria.resolve(nombre));
            if (!funcion && b.error.isEmpty())
                b.error = libreria.errorString();
        };
        resolver(b.workbook_new_opt, "workbook_new_opt");
        resolver(b.workbook_add_worksheet, "workbook_add_worksheet");
        resolver(b.workbook_add_format, "workbook_add_format");
        resolver(b.workbook_close, "workbook_close");
        resolver(b.worksheet_freeze_panes, "worksheet_freeze_panes");
        resolver(b.worksheet_set_column, "worksheet_set_column");
        resolver(b.worksheet_write_number, "worksheet_write_number");
        resolver(b.worksheet_write_datetime, "worksheet_write_datetime");
        resolver(b.worksheet_write_blank, "worksheet_write_blank");
        resolver(b.worksheet_write_string, "worksheet_write_string");
        resolver(b.format_set_num_format, "format_set_num_format");
        resolver(b.format_set_font_color, "format_set_font_color");
        resolver(b.format_set_bg_color, "format_set_bg_color");
        resolver(b.format_set_bold, "format_set_bold");
        resolver(b.format_set_bottom, "format_set_bottom");
        resolver(b.lxw_strerror, "lxw_strerror");
        return b;
    }();
    return biblioteca;
}
