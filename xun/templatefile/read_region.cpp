// The [Field] section: a new region at the end of the current page.
#include <string>

#include "xun/model/template.h"
#include "xun/support/numeric.h"
#include "xun/support/runtime_error.h"
#include "xun/support/text.h"
#include "xun/support/value_helpers.h"
#include "xun/templatefile/bas_template.h"
#include "xun/templatefile/password_keys.h"
#include "xun/templatefile/template_reader.h"

namespace xun::basTemplate {
namespace detail {
namespace {

constexpr const char* kRegionErrorText =
    "An error occurred reading the [Field] section of the template file. One or more region "
    "parameters are missing or invalid.";

std::string UnscramblePassword(const std::string& value) {
  const std::string scrambled(text::Trim(value));
  if (scrambled.empty()) return {};
  return basPublic::HexToUnicode(
      basPublic::Decrypt(scrambled, kPasswordKey1, kPasswordKey2, kPasswordKey3));
}

xunDataType DataTypeValue(const std::string& value) {
  const std::string word = text::ToUpper(text::Trim(value));
  if (word == "TEXT") return xunDataTypeText;
  if (word == "NUMERIC") return xunDataTypeNumeric;
  return static_cast<xunDataType>(Int16Value(value));
}

// Keys of the database lookup settings; false when the key is none of them.
bool ReadDatabaseKey(clsXUNFieldDB& db, const std::string& key, const std::string& value) {
  if (key == "DBNAME") {
    db.Name(TextValue(value));
  } else if (key == "DBCATALOG") {
    db.Catalog(TextValue(value));
  } else if (key == "DBTABLE") {
    db.Table(TextValue(value));
  } else if (key == "DBFIELD") {
    db.LookupField(TextValue(value));
  } else if (key == "DBREPLACE") {
    db.ReplaceField(CleanTemplateValues(value, false, ""));
  } else if (key == "DBRETURN") {
    db.ReturnFields()->RemoveAll();
    db.ReturnFields()->AddDelimitedString(CleanTemplateValues(value, false, ""), "\t");
  } else if (key == "DBTYPE") {
    db.DBType(Int16Value(value));
  } else if (key == "DBDSNBASED") {
    db.DSNBased(FlagValue(value));
  } else if (key == "DBDIRECTORYBASED") {
    db.DirectoryBased(FlagValue(value));
  } else if (key == "DBDSNNAME") {
    db.DSNName(TextValue(value));
  } else if (key == "DBUSER") {
    db.User(TextValue(value));
  } else if (key == "DBPASSWORD") {
    db.Password(UnscramblePassword(value));
  } else if (key == "DBCONNECT") {
    db.Connect(TextValue(value));
  } else if (key == "DBUNICODE") {
    db.Unicode(FlagValue(value));
  } else {
    return false;
  }
  return true;
}

void ReadRegionKey(clsXUNField& f, RegionCarriedValues& carried, const std::string& names,
                   const std::string& key, const std::string& value) {
  if (key == "ATTRIBUTES") {
    DictionaryPtr attributes = Dictionary::Create();
    basPublic::StringToDictionary(value, attributes, "\t", "|");
    f.Attributes(attributes);
  } else if (key == "NAME" || key == "FIELDNAME") {
    f.FieldName(TextValue(value, names));
  } else if (key == "RECOGTYPE") {
    f.RecognitionType(static_cast<xunRecogType>(Int16Value(value)));
  } else if (key == "FIELDTYPE") {
    f.FieldType(static_cast<xunFieldType>(Int16Value(value)));
  } else if (key == "DATATYPE") {
    f.DataType(DataTypeValue(value));
  } else if (key == "ORIENT") {
    f.Orient(static_cast<xunOrientationType>(Int16Value(value)));
  } else if (key == "READ") {
    f.Read(FlagValue(value));
  } else if (key == "KEY") {
    f.Key(KeyValue(value));
  } else if (key == "TAG") {
    f.Tag(TextValue(value));
  } else if (key == "EXTRA") {
    f.Extra()->RemoveAll();
    f.Extra()->AddDelimitedString(std::string(text::Trim(value)), "\t");
  } else if (key == "COLGAP") {
    f.ColGap(Int16Value(value));
  } else if (key == "NUMCOLS") {
    f.NumCols(Int16Value(value));
  } else if (key == "NUMROWS") {
    f.NumRows(Int16Value(value));
  } else if (key == "ROWGAP") {
    f.RowGap(Int16Value(value));
  } else if (key == "STARTCOL") {
    f.StartCol(Int16Value(value));
  } else if (key == "STARTROW") {
    f.StartRow(Int16Value(value));
  } else if (key == "THRESHOLD") {
    f.Threshold(Int16Value(value));
  } else if (key == "PATTERN") {
    f.Pattern(TextValue(value));
  } else if (key == "LINKVALUE" || key == "IMAGELINKVALUE") {
    f.ImageLinkValue(TextValue(value));
  } else if (key == "LINKQUESTIONKEY") {
    f.ImageLinkQuestionKey(TextValue(value));
  } else if (key == "IMAGEFILLPROMPT") {
    f.ImageFillPrompt(FlagValue(value));
  } else if (key == "IMAGECLIPFILE") {
    f.ImageClipFile(TextValue(value));
  } else if (key == "IMAGECLIPTYPE") {
    f.ImageClipType(static_cast<xunImageClipType>(Int16Value(value)));
  } else if (key == "IMAGECLIPCOMPRESSION") {
    f.ImageClipCompression(static_cast<xunImageClipCompression>(Int16Value(value)));
  } else if (key == "IMAGECLIPADDCOLUMN") {
    f.ImageClipAddColumn(FlagValue(value));
  } else if (key == "DEFAULTFILL" || key == "FILL") {
    f.DefaultFill(TextValue(value));
  } else if (key == "AUTOINCREMENT") {
    f.AutoIncrement(FlagValue(value));
  } else if (key == "AUTOINCREMENTSPANSTEMPLATES") {
    f.AutoIncrementSpansTemplates(FlagValue(value));
  } else if (key == "AUTODETECT") {
    f.AutoDetect(FlagValue(value));
  } else if (key == "BARCODEDELIMITER") {
    // Not cleaned: the delimiter may itself be a blank or a control character.
    SetBarcodeDelimiter(f, value);
  } else if (key == "BARCODEDISTANCE") {
    f.BarcodeDistance(Int16Value(value));
  } else if (key == "BARCODELENGTH") {
    f.BarcodeLength(Int16Value(value));
  } else if (key == "LEFT" || key == "LOWERX") {
    f.Left(Int16Value(value));
  } else if (key == "RIGHT" || key == "UPPERX") {
    f.Right(Int16Value(value));
  } else if (key == "TOP" || key == "LOWERY") {
    f.Top(Int16Value(value));
  } else if (key == "BOTTOM" || key == "UPPERY") {
    f.Bottom(Int16Value(value));
  } else if (key == "IDADD") {
    carried.id_add = value;
  } else if (key == "IDTYPE") {
    carried.id_type = value;
  } else if (key == "IDVALUE") {
    carried.id_value = value;
  } else if (key == "TESTVERSIONID") {
    carried.test_version_id = value;
  } else if (key == "IMAGEFILLVALUE") {
    carried.image_fill_value = value;
  } else {
    ReadDatabaseKey(*f.DB(), key, value);
  }
}

}  // namespace

bool ReadRegion(ReaderContext& ctx) {
  ctx.section_line = ctx.cursor.LineNumber();
  const auto pages = ctx.tmpl.Pages();
  const std::shared_ptr<clsXUNPage> page =
      pages && pages->Count() > 0 ? pages->Item(pages->Count()) : nullptr;
  if (!page) Raise(kErrObjectNotSet);  // a [Field] before any [Page]: not a template file

  const std::shared_ptr<clsXUNField> field = clsXUNField::Create();
  RegionCarriedValues carried;
  const std::string names = ctx.tmpl.IllegalNameCharacters();
  ReadSectionKeys(ctx.cursor, [&](const std::string& key, const std::string& value) {
    ReadRegionKey(*field, carried, names, key, value);
    return true;
  });
  if (carried.image_fill_value && field->DefaultFill().empty())
    field->DefaultFill(TextValue(*carried.image_fill_value));

  if (ctx.link_regions_left > 0) {
    field->LinkGroup(ctx.open_link_group);
    field->LinkStart(ctx.link_start_next);
    ctx.link_start_next = false;
    --ctx.link_regions_left;
  }

  // Added after the keys: a region's key cannot change once it is in the list.
  page->Fields()->Add(field);
  ctx.carried[field.get()] = std::move(carried);
  if (!CheckRegionRequired(*field)) {
    FailRead("Region Error",
             std::string(kRegionErrorText) +
                 "\r\n\r\nRegion: " + std::to_string(page->Fields()->Count()) +
                 "\r\nPage: " + std::to_string(pages->Count()),
             "basTemplate.ReadRegion", ctx.section_line);
    return false;
  }
  return true;
}

}  // namespace detail

}  // namespace xun::basTemplate
