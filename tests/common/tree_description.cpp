#include "common/tree_description.h"

#include <algorithm>
#include <map>
#include <optional>
#include <sstream>

namespace xun::testing {
namespace {

// The library's cleaner, and the lists of characters it removes from names, choice labels and
// codes.
clsXUNTemplate& Cleaner() {
  static const std::shared_ptr<clsXUNTemplate> cleaner = clsXUNTemplate::Create();
  return *cleaner;
}

class Describer {
 public:
  explicit Describer(bool file_view) : file_view_(file_view) { out_.precision(17); }

  template <class V>
  void Put(const std::string& path, const char* name, const V& value) {
    out_ << path << '.' << name << '=' << value << '\n';
  }
  // -0 is written as "0": the file has no negative zero.
  void Put(const std::string& path, const char* name, double value) {
    out_ << path << '.' << name << '=' << (value == 0 ? 0.0 : value) << '\n';
  }
  void Put(const std::string& path, const char* name, float value) {
    Put(path, name, static_cast<double>(value));
  }
  // In the file view text is as a file holds it: the library's own cleaner (tabs and line breaks
  // become blanks, then the listed characters go) and blanks at either end trimmed once more.
  static std::string AsFileText(const std::string& value, const std::string& codes = "") {
    return std::string(text::Trim(Cleaner().CleanValues(value, true, codes).ToText()));
  }
  void PutText(const std::string& path, const char* name, const std::string& value) {
    Put(path, name, "\"" + (file_view_ ? AsFileText(value) : value) + "\"");
  }
  // Names lose the characters . ! ' [ ] , " ( ) as well.
  void PutName(const std::string& path, const char* name, const std::string& value) {
    Put(path, name,
        "\"" + (file_view_ ? AsFileText(value, Cleaner().IllegalNameCharacters()) : value) + "\"");
  }
  // Whether a value of a key group goes into the description: always in the full view, in the
  // file view only when the region's kind writes that group.
  bool Holds(bool kind_writes) const { return !file_view_ || kind_writes; }
  void PutKey(const std::string& path, const std::string& key) {
    if (!file_view_) PutText(path, "Key", key);
  }
  void PutAttributes(const std::string& path, const DictionaryPtr& attributes) {
    if (!attributes) return Put(path, "Attributes", "none");
    for (const std::string& key : attributes->Keys()) {
      const Variant value = attributes->Item(key);
      // As text: the file holds an attribute as text, whatever kind it had; in the file view
      // its key and value cleaned like any text.
      const std::string shown = file_view_ ? AsFileText(key) : key;
      if (shown.empty()) continue;
      Put(path, ("Attributes[" + shown + "]").c_str(),
          file_view_ ? AsFileText(value.ToText()) : value.ToText());
    }
  }
  // In the file view each item cleaned, and without the characters of the code list `removed`.
  void PutItems(const std::string& path, const char* name,
                const std::shared_ptr<clsXUNStringItems>& items, const std::string& removed = "") {
    if (!items) return Put(path, name, "none");
    std::string joined;
    for (const std::string& item : *items)
      joined += "|" + (file_view_ ? AsFileText(item, removed) : item);
    Put(path, name, std::to_string(items->Count()) + ":" + joined);
  }
  // The unnamed values (the registration layout), then the named ones. The file view holds only
  // the older region settings, in the order the file writes them, and "ImageFillValue" only for
  // image regions.
  void PutExtra(const std::string& path, const std::shared_ptr<clsXUNFieldExtra>& extra,
                bool image) {
    if (!extra) return Put(path, "Extra", "none");
    std::string values, named;
    for (int32_t i = 1; i <= extra->Count(); ++i) {
      const std::optional<std::string> key = extra->KeyOf(i);
      if (!key) values += (values.empty() ? "" : ",") + std::to_string(extra->Item(i));
      if (key && !file_view_) named += *key + "=" + std::to_string(extra->Item(i)) + ",";
    }
    if (file_view_) {
      for (const char* key : {"IDAdd", "IDType", "IDValue", "TestVersionID", "ImageFillValue"})
        if (extra->Exists(key) && (image || std::string_view(key) != "ImageFillValue"))
          named += std::string(key) + "=" + std::to_string(extra->Item(key)) + ",";
    }
    Put(path, "Extra", values + ";" + named);
  }

  void Template(const clsXUNTemplate& t) {
    const std::string p = "Form";
    PutAttributes(p, t.Attributes());
    Put(p, "PageHeight", t.PageHeight());
    Put(p, "PageWidth", t.PageWidth());
    Put(p, "Orientation", t.Orientation());
    PutText(p, "RDDName", t.RDDName());
    Put(p, "HeaderCount", t.HeaderCount());
    Put(p, "HeaderPageCount", t.HeaderPageCount());
    Put(p, "HeaderItemCount", t.HeaderItemCount());
    // Not Manufacturer or Name: the file never holds the one and does not read back the other.
    PutText(p, "Description", t.Description());
    Put(p, "Editable", t.Editable());
    Put(p, "Duplex", t.Duplex());
    Put(p, "SelfScore", t.SelfScore());
    PutText(p, "Tag", t.Tag());
    Put(p, "ReadType", t.ReadType());
    Put(p, "ColumnWidth", t.ColumnWidth());
    Put(p, "Columns", t.Columns());
    Put(p, "RowTopMargin", t.RowTopMargin());
    Put(p, "RowBottomMargin", t.RowBottomMargin());
    Put(p, "NumItems", t.NumItems());
    template_column_width_ = t.ColumnWidth();
    int n = 0;
    if (t.Pages())
      for (const auto& page : *t.Pages())
        Page("Page" + std::to_string(++n), *page);
  }

  void Page(const std::string& p, const clsXUNPage& page) {
    PutAttributes(p, page.Attributes());
    PutKey(p, page.Key());
    if (!file_view_) PutText(p, "ImageFile", page.ImageFile());
    // A page added to a template with width 0 takes the template's width, as every page of a
    // read is: a 0 a page got later reads back as the template's width.
    const float width = page.ColumnWidth();
    Put(p, "ColumnWidth", file_view_ && width == 0 ? template_column_width_ : width);
    PutText(p, "Tag", page.Tag());
    Put(p, "XDPI", page.XDPI());
    Put(p, "YDPI", page.YDPI());
    Put(p, "ImageWidth", page.ImageWidth());
    Put(p, "ImageHeight", page.ImageHeight());
    Put(p, "DropOutThreshold", page.DropOutThreshold());
    Put(p, "DropOutColor", page.DropOutColor());
    Put(p, "WeightedRotate", page.WeightedRotate());
    Put(p, "FilledPixels", page.FilledPixels());
    PutText(p, "TimingMarks", page.TimingMarks() ? page.TimingMarks()->AsString() : "none");
    // A link group lies on one page: the same number on another page is another group.
    link_groups_.clear();
    int n = 0;
    if (page.Fields())
      for (const auto& field : *page.Fields())
        Region(p + ".Region" + std::to_string(++n), *field);
  }

  void Region(const std::string& p, const clsXUNField& f) {
    PutAttributes(p, f.Attributes());
    PutKey(p, f.Key());
    PutName(p, "FieldName", f.FieldName());
    Put(p, "RecognitionType", f.RecognitionType());
    Put(p, "FieldType", f.FieldType());
    Put(p, "DataType", f.DataType());
    Put(p, "Orient", f.Orient());
    // Which kinds carry which key groups: the table in docs/template-file.md.
    const xunRecogType kind = f.RecognitionType();
    const bool omr = kind == xunRecogTypeOMR, barcode = kind == xunRecogTypeBarcode;
    const bool ocr = kind == xunRecogTypeOCR, image = kind == xunRecogTypeImage;
    const bool clip = image && f.FieldType() >= 1 && f.FieldType() <= 3;
    const bool image_entry = image && f.FieldType() == xunFieldTypeImageDataEntry;
    const bool entry = barcode || ocr || image_entry;
    if (Holds(clip)) {
      Put(p, "ImageClipType", f.ImageClipType());
      Put(p, "ImageClipCompression", f.ImageClipCompression());
      PutText(p, "ImageClipFile", f.ImageClipFile());
      Put(p, "ImageClipAddColumn", f.ImageClipAddColumn());
    }
    if (Holds(image_entry)) {
      Put(p, "ImageFillPrompt", f.ImageFillPrompt());
      PutText(p, "ImageLinkValue", f.ImageLinkValue());
      PutText(p, "ImageLinkQuestionKey", f.ImageLinkQuestionKey());
    }
    if (Holds(barcode)) {
      // Escaped in the file, never cleaned: held exactly.
      Put(p, "BarcodeDelimiter", "\"" + f.BarcodeDelimiter() + "\"");
      Put(p, "BarcodeDistance", f.BarcodeDistance());
      Put(p, "BarcodeLength", f.BarcodeLength());
    }
    Put(p, "Rectangle",
        std::to_string(f.Left()) + "," + std::to_string(f.Top()) + "," + std::to_string(f.Right()) +
            "," + std::to_string(f.Bottom()));
    if (Holds(omr || ocr)) {
      Put(p, "Grid",
          std::to_string(f.StartRow()) + "," + std::to_string(f.RowGap()) + "," +
              std::to_string(f.StartCol()) + "," + std::to_string(f.ColGap()) + "," +
              std::to_string(f.NumRows()));
      PutText(p, "Pattern", f.Pattern());
    }
    if (Holds(omr || entry)) {
      Put(p, "NumCols", f.NumCols());
      Put(p, "Threshold", f.Threshold());
    }
    Put(p, "LinkGroup", LinkGroupOf(f.LinkGroup()));
    Put(p, "LinkStart", f.LinkStart());
    Put(p, "Read", f.Read());
    if (Holds(entry)) {
      Put(p, "AutoDetect", f.AutoDetect());
      Put(p, "AutoIncrement", f.AutoIncrement());
      Put(p, "AutoIncrementSpansTemplates", f.AutoIncrementSpansTemplates());
      PutText(p, "DefaultFill", f.DefaultFill());
    }
    PutText(p, "Tag", f.Tag());
    PutExtra(p, f.Extra(), image);
    Put(p, "NumItems", f.NumItems());
    if (const auto db = f.DB(); db && Holds(f.DBVerify())) {
      PutText(p, "DB.Name", db->Name());
      PutText(p, "DB.Catalog", db->Catalog());
      PutText(p, "DB.Table", db->Table());
      PutText(p, "DB.LookupField", db->LookupField());
      // A tab-separated list in one text: its tabs are held.
      std::string replace = db->ReplaceField();
      if (file_view_) std::replace(replace.begin(), replace.end(), '\t', '\x01');
      PutText(p, "DB.ReplaceField", replace);
      PutItems(p, "DB.ReturnFields", db->ReturnFields());
      Put(p, "DB.DBType", db->DBType());
      Put(p, "DB.DirectoryBased", db->DirectoryBased());
      Put(p, "DB.DSNBased", db->DSNBased());
      PutText(p, "DB.DSNName", db->DSNName());
      PutText(p, "DB.User", db->User());
      PutText(p, "DB.Password", db->Password());
      Put(p, "DB.Unicode", db->Unicode());
    }
    int n = 0;
    if (f.Questions())
      for (const auto& q : *f.Questions())
        Question(p + ".Question" + std::to_string(++n), *q);
  }

  void Question(const std::string& p, const clsXUNQuestion& q) {
    PutKey(p, q.Key());
    PutName(p, "QuestionName", q.QuestionName());
    PutText(p, "QuestionText", q.QuestionText());
    PutItems(p, "Choices", q.Choices(), Cleaner().IllegalLabelCharacters());
    PutItems(p, "Codes", q.Codes(), Cleaner().IllegalValueCharacters());
    Put(p, "IDType", q.IDType());
    PutText(p, "IDValue", q.IDValue());
    Put(p, "IDAdd", q.IDAdd());
    Put(p, "TestVersionID", q.TestVersionID());
    Put(p, "Required", q.Required());
    Put(p, "Discriminate", q.Discriminate());
    Put(p, "Tally", q.Tally());
    Put(p, "Grade", q.Grade());
    Put(p, "Correct", q.Correct());
    Put(p, "Incorrect", q.Incorrect());
    Put(p, "NoResponse", q.NoResponse());
    Put(p, "ExtraCredit", q.ExtraCredit());
    Put(p, "SubjectiveField", q.SubjectiveField());
    Put(p, "SubjectivePoints", q.SubjectivePoints());
    Put(p, "Rubric", q.Rubric());
    Put(p, "RespondentID", q.RespondentID());
    PutText(p, "DuplicateReturn", q.DuplicateReturn());
    PutText(p, "MultsReturn", q.MultsReturn());
    PutText(p, "BlanksReturn", q.BlanksReturn());
    Put(p, "BlanksFlag", q.BlanksFlag());
    PutText(p, "ErrorReturn", q.ErrorReturn());
    Put(p, "MultsAllowed", q.MultsAllowed());
    Put(p, "NAChoice", q.NAChoice());
    PutText(p, "Tag", q.Tag());
  }

  std::string str() const { return out_.str(); }

  // In the file view a group is named by its order of appearance on its page: the file holds
  // which regions are linked together, not the group numbers, and a read numbers the groups it
  // finds.
  int LinkGroupOf(int16_t group) {
    if (!file_view_ || group == 0) return group;
    const auto [it, added] = link_groups_.try_emplace(group, link_groups_.size() + 1);
    return static_cast<int>(it->second);
  }

 private:
  bool file_view_;
  std::ostringstream out_;
  std::map<int16_t, size_t> link_groups_;
  float template_column_width_ = 0;
};

}  // namespace

std::string DescribeTree(const clsXUNTemplate& t, bool file_view) {
  Describer describer(file_view);
  describer.Template(t);
  return describer.str();
}

}  // namespace xun::testing
