// Records as a workbook.
#pragma once

#include "druckwerk/exits/record_writer.h"

namespace kvtdruck::druckwerk {

/// The tables of the plan, and behind them two sheets, "Variablen" and "Felder", joined by the number of the
/// section in their first column. Rows go straight to the disk, so memory stays flat; a full sheet is continued on
/// another one.
std::unique_ptr<RecordWriter> openXlsxWriter(AtomicFile& file, Contents contents, const WorkbookContent& content,
                                             std::function<void(std::string_view)> warn);

} // namespace kvtdruck::druckwerk
