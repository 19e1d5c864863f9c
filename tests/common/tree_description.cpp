#include "common/tree_description.h"

#include <sstream>

namespace xun::testing {
namespace {

class Describer {
 public:
  explicit Describer(bool stable_only) : stable_only_(stable_only) { out_.precision(17); }

  template <class V>
  void Put(const std::string& path, const char* name, const V& value) {
    out_ << path << '.' << name << '=' << value << '\n';
  }
  void PutText(const std::string& path, const char* name, const std::string& value) {
    Put(path, name, "\"" + value + "\"");
  }
  void PutKey(const std::string& path, const std::string& key) {
    if (!stable_only_) PutText(path, "Key", key);
  }
  void PutAttributes(const std::string& path, const DictionaryPtr& attributes) {
    if (!attributes) return Put(path, "Attributes", "none");
    for (const std::string& key : attributes->Keys()) {
      const Variant value = attributes->Item(key);
      // As text: the file holds an attribute as text, whatever kind it had.
      Put(path, ("Attributes[" + key + "]").c_str(), value.ToText());
    }
  }
  void PutItems(const std::string& path, const char* name,
                const std::shared_ptr<clsXUNStringItems>& items) {
    if (!items) return Put(path, name, "none");
    Put(path, name, std::to_string(items->Count()) + ":" + items->AsString("|"));
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
    int n = 0;
    if (t.Pages())
      for (const auto& page : *t.Pages())
        Page("Page" + std::to_string(++n), *page);
  }

  void Page(const std::string& p, const clsXUNPage& page) {
    PutAttributes(p, page.Attributes());
    PutKey(p, page.Key());
    if (!stable_only_) PutText(p, "ImageFile", page.ImageFile());
    Put(p, "ColumnWidth", page.ColumnWidth());
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
    int n = 0;
    if (page.Fields())
      for (const auto& field : *page.Fields())
        Region(p + ".Region" + std::to_string(++n), *field);
  }

  void Region(const std::string& p, const clsXUNField& f) {
    PutAttributes(p, f.Attributes());
    PutKey(p, f.Key());
    PutText(p, "FieldName", f.FieldName());
    Put(p, "RecognitionType", f.RecognitionType());
    Put(p, "FieldType", f.FieldType());
    Put(p, "DataType", f.DataType());
    Put(p, "Orient", f.Orient());
    Put(p, "ImageClipType", f.ImageClipType());
    Put(p, "ImageClipCompression", f.ImageClipCompression());
    PutText(p, "ImageClipFile", f.ImageClipFile());
    Put(p, "ImageClipAddColumn", f.ImageClipAddColumn());
    Put(p, "ImageFillPrompt", f.ImageFillPrompt());
    PutText(p, "ImageLinkValue", f.ImageLinkValue());
    PutText(p, "ImageLinkQuestionKey", f.ImageLinkQuestionKey());
    PutText(p, "BarcodeDelimiter", f.BarcodeDelimiter());
    Put(p, "BarcodeDistance", f.BarcodeDistance());
    Put(p, "BarcodeLength", f.BarcodeLength());
    Put(p, "Rectangle",
        std::to_string(f.Left()) + "," + std::to_string(f.Top()) + "," + std::to_string(f.Right()) +
            "," + std::to_string(f.Bottom()));
    Put(p, "Grid",
        std::to_string(f.StartRow()) + "," + std::to_string(f.RowGap()) + "," +
            std::to_string(f.StartCol()) + "," + std::to_string(f.ColGap()) + "," +
            std::to_string(f.NumRows()) + "," + std::to_string(f.NumCols()));
    Put(p, "LinkGroup", f.LinkGroup());
    Put(p, "LinkStart", f.LinkStart());
    Put(p, "Read", f.Read());
    Put(p, "AutoDetect", f.AutoDetect());
    Put(p, "AutoIncrement", f.AutoIncrement());
    Put(p, "AutoIncrementSpansTemplates", f.AutoIncrementSpansTemplates());
    PutText(p, "DefaultFill", f.DefaultFill());
    PutText(p, "Pattern", f.Pattern());
    Put(p, "Threshold", f.Threshold());
    PutText(p, "Tag", f.Tag());
    PutText(p, "Extra", f.Extra() ? f.Extra()->AsString(",") : "none");
    Put(p, "NumItems", f.NumItems());
    if (const auto db = f.DB()) {
      PutText(p, "DB.Name", db->Name());
      PutText(p, "DB.Catalog", db->Catalog());
      PutText(p, "DB.Table", db->Table());
      PutText(p, "DB.LookupField", db->LookupField());
      PutText(p, "DB.ReplaceField", db->ReplaceField());
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
    PutText(p, "QuestionName", q.QuestionName());
    PutText(p, "QuestionText", q.QuestionText());
    PutItems(p, "Choices", q.Choices());
    PutItems(p, "Codes", q.Codes());
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

 private:
  bool stable_only_;
  std::ostringstream out_;
};

}  // namespace

std::string DescribeTree(const clsXUNTemplate& t, bool stable_only) {
  Describer describer(stable_only);
  describer.Template(t);
  return describer.str();
}

}  // namespace xun::testing
