#pragma once

#include <QString>

#include <xlsxwriter.h>

// The workbook library's functions the export calls. The library, and the compression and
// cryptography libraries it brings, is loaded the first time a workbook is written rather
// than when the program starts: loading it costs every start-up a few milliseconds of CPU
// that a session which never writes a workbook does not need to pay.
struct BibliotecaLibro
{
    decltype(&::workbook_new_opt) workbook_new_opt = nullptr;
    decltype(&::workbook_add_worksheet) workbook_add_worksheet = nullptr;
    decltype(&::workbook_add_format) workbook_add_format = nullptr;
    decltype(&::workbook_close) workbook_close = nullptr;
    decltype(&::worksheet_freeze_panes) worksheet_freeze_panes = nullptr;
    decltype(&::worksheet_set_column) worksheet_set_column = nullptr;
    decltype(&::worksheet_write_number) worksheet_write_number = nullptr;
    decltype(&::worksheet_write_datetime) worksheet_write_datetime = nullptr;
    decltype(&::worksheet_write_blank) worksheet_write_blank = nullptr;
    decltype(&::worksheet_write_string) worksheet_write_string = nullptr;
    decltype(&::format_set_num_format) format_set_num_format = nullptr;
    decltype(&::format_set_font_color) format_set_font_color = nullptr;
    decltype(&::format_set_bg_color) format_set_bg_color = nullptr;
    decltype(&::format_set_bold) format_set_bold = nullptr;
    decltype(&::format_set_bottom) format_set_bottom = nullptr;
    decltype(&::lxw_strerror) lxw_strerror = nullptr;
    QString error; // why the library could not be loaded; empty when it was
};

// The library, loaded on the first call; error says when it could not be.
const BibliotecaLibro &Xlsx();
