#include "scan/form_json.h"

#include <string_view>

namespace qb {
namespace {

void AppendString(std::string& out, std::string_view bytes) {
  out += '"';
  for (char c : bytes) {
    const unsigned char byte = static_cast<unsigned char>(c);
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\b': out += "\\b"; break;
      case '\f': out += "\\f"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      default:
        if (byte < 0x20 || byte >= 0x80) {
          constexpr char kHex[] = "0123456789abcdef";
          out.append("\\u00").append(1, kHex[byte >> 4]).append(1, kHex[byte & 0xF]);
        } else {
          out += c;
        }
    }
  }
  out += '"';
}

void AppendText(std::string& out, TextBlock block) {
  TextLock lock(block);
  if (!lock.locked()) {
    out += "null";
    return;
  }
  AppendString(out, lock.text());
}

void AppendTextMember(std::string& out, const char* name, TextBlock block) {
  out.append("\"").append(name).append("\":");
  AppendText(out, block);
  out += ',';
}

void AppendNumber(std::string& out, const char* name, long long number) {
  out.append("\"").append(name).append("\":").append(std::to_string(number)).append(",");
}

void AppendOptions(std::string& out, const FormScan& scan, const FormField& field) {
  out += ",\"options\":[";
  if (field.selectIndex >= 0 && static_cast<std::size_t>(field.selectIndex) < scan.selects.size()) {
    const char* separator = "";
    for (const SelectOption& option : scan.selects[field.selectIndex]) {
      out.append(separator).append("{\"tag\":");
      AppendText(out, option.tag);
      out += ",\"text\":";
      AppendText(out, option.text);
      out += '}';
      separator = ",";
    }
  }
  out += ']';
}

void AppendField(std::string& out, const FormScan& scan, const FormField& field) {
  out += '{';
  AppendNumber(out, "kind", field.kind);
  AppendTextMember(out, "name", field.name);
  AppendTextMember(out, "value", field.value);
  AppendTextMember(out, "class", field.className);
  AppendNumber(out, "size", field.size);
  AppendNumber(out, "maxlength", field.maxlength);
  AppendNumber(out, "rows", field.rows);
  AppendNumber(out, "cols", field.cols);
  AppendNumber(out, "checked", field.checked ? 1 : 0);
  AppendNumber(out, "multiple", field.multiple ? 1 : 0);
  out += "\"label\":";
  AppendText(out, field.label);
  if (field.kind == kFieldSelect) AppendOptions(out, scan, field);
  out += '}';
}

void AppendForm(std::string& out, const FormScan& scan, const HtmlForm& form) {
  out += '{';
  AppendTextMember(out, "action", form.action);
  AppendTextMember(out, "method", form.method);
  AppendTextMember(out, "name", form.name);
  AppendTextMember(out, "enctype", form.enctype);
  AppendTextMember(out, "target", form.target);
  AppendTextMember(out, "onSubmit", form.onSubmit);
  AppendNumber(out, "hasSubmit", form.hasSubmit ? 1 : 0);
  out += "\"fields\":[";
  for (std::size_t slot = 1; slot < form.fields.size(); ++slot) {  // slot 0 is the FORM tag
    if (slot > 1) out += ',';
    AppendField(out, scan, form.fields[slot]);
  }
  out += "]}";
}

}  // namespace

std::string FormScanToJson(const FormScan& scan) {
  std::string out = "{\"forms\":[";
  for (std::size_t i = 0; i < scan.forms.size(); ++i) {
    if (i > 0) out += ',';
    AppendForm(out, scan, scan.forms[i]);
  }
  out += "],\"scripts\":[";
  for (std::size_t i = 0; i < scan.scripts.size(); ++i) {
    if (i > 0) out += ',';
    out.append("[").append(std::to_string(scan.scripts[i].start)).append(",")
        .append(std::to_string(scan.scripts[i].end)).append("]");
  }
  out += "],\"tablePrefix\":";
  if (scan.tablePrefix.empty()) {
    out += "null";
  } else {
    AppendString(out, scan.tablePrefix);
  }
  out += '}';
  return out;
}

}  // namespace qb
