#include "sheet/form_types.h"

#include <algorithm>

namespace tarnsheets {

ArrayCounts CountArrays(std::span<const FieldRow> rows) {
  ArrayCounts counts;
  for (const FieldRow& row : rows) {
    if (row.editor.kind == EditorKind::kText) ++counts.txt_value;
    if (row.editor.kind == EditorKind::kCheck) ++counts.chk_value;
    if (row.has_title()) ++counts.lbl_title;
    if (row.has_button()) {
      ++counts.cmd_value;
      counts.cmd_value_bound = std::max(counts.cmd_value_bound, row.button.index + 1);
    }
  }
  return counts;
}

}  // namespace tarnsheets
