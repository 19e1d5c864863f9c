#include "xun/model/field.h"

#include <string>
#include <utility>

#include "xun/model/fields.h"
#include "xun/model/page.h"
#include "xun/model/template.h"
#include "xun/support/numeric.h"
#include "xun/support/trap.h"
#include "xun/support/value_helpers.h"

namespace xun {
namespace {

bool PlaysRole(const clsXUNQuestion& question, xunIDType eIDType) {
  return eIDType == xunIDTypeAny ? question.IDType() >= 1 : question.IDType() == eIDType;
}

// An identification question that is not added identifies the sheet but produces no data item.
bool IsHidden(const clsXUNQuestion& question) {
  return question.IDType() >= 1 && !question.IDAdd();
}

// A linked region after the first of its group: the group's items belong to its first region.
bool FollowsInGroup(const clsXUNField& field) {
  return field.LinkGroup() >= 1 && !field.LinkStart();
}

// The region that carries the items of a follower's group: the first region of its list with
// the same group and LinkStart, else the first with the same group at all.
std::shared_ptr<clsXUNField> GroupFirst(const clsXUNField& field) {
  const std::shared_ptr<clsXUNFields> list = field.Fields();
  if (!list) return nullptr;
  std::shared_ptr<clsXUNField> first;
  for (const std::shared_ptr<clsXUNField>& other : *list) {
    if (other->LinkGroup() != field.LinkGroup()) continue;
    if (other->LinkStart()) return other;
    if (!first) first = other;
  }
  return first;
}

int32_t PositionIn(const clsXUNFields& list, const clsXUNField* field) {
  int32_t position = 0;
  for (const std::shared_ptr<clsXUNField>& entry : list) {
    ++position;
    if (entry.get() == field) return position;
  }
  return 0;
}

// The database return columns, each one more item of the region.
int32_t DBColumns(const clsXUNField& field) {
  if (!field.DBVerify()) return 0;
  const std::shared_ptr<clsXUNStringItems> columns = field.DB()->ReturnFields();
  return columns ? columns->Count() : 0;
}

bool ReadsSeveralBarcodes(xunFieldType type) {
  switch (type) {
    case xunFieldTypeBarcodeAuto:
    case xunFieldTypeBarcodeCode39:
    case xunFieldTypeBarcodeCode93:
    case xunFieldTypeBarcodeCode128:
    case xunFieldTypeBarcodePDF417:
    case xunFieldTypeBarcodeDataMatrix:
    case xunFieldTypeBarcodeQRCode:
    case xunFieldTypeBarcodeCode39Extended:
      return true;
    default:
      return false;
  }
}

// The region's own bubbles and columns, before hidden questions and database columns.
int16_t BaseCount(const clsXUNField& field) {
  switch (field.RecognitionType()) {
    case xunRecogTypeOMR:
      switch (field.FieldType()) {
        case xunFieldTypeOMRMult:
        case xunFieldTypeOMRRank:
          if (field.Orient() == xunOrientationTypeOMRRow) return field.NumRows();
          if (field.Orient() == xunOrientationTypeOMRCol) return field.NumCols();
          return 0;
        case xunFieldTypeOMRBoolean:
          // Every bubble is an item. A grid too large is reported by NumMarks itself, as 0.
          return static_cast<int16_t>(field.NumMarks());
        default:
          return 1;
      }
    case xunRecogTypeImage:
      return field.FieldType() == xunFieldTypeImageClipData && field.ImageClipAddColumn() ? 2 : 1;
    case xunRecogTypeBarcode:
      if (!field.BarcodeDelimiter().empty() && field.NumCols() > 1 &&
          ReadsSeveralBarcodes(field.FieldType()))
        return field.NumCols();
      return 1;
    default:
      return 1;
  }
}

// The item number of question q within a region that carries its own items.
int16_t ItemWithin(const clsXUNField& field, int16_t q) {
  const std::shared_ptr<clsXUNQuestions> questions = field.Questions();
  if (!questions || q < 1 || q > questions->Count()) return 0;
  int32_t position = 0;
  int16_t visible = 0;
  for (const std::shared_ptr<clsXUNQuestion>& question : *questions) {
    const bool hidden = IsHidden(*question);
    if (!hidden) ++visible;
    if (++position == q) {
      if (hidden) return 0;
      break;
    }
  }
  const int16_t own = Sub16(field.CalculateNumItems(false), DBColumns(field));
  return visible <= own ? visible : int16_t{0};
}

}  // namespace

clsXUNField::clsXUNField()
    : attributes_(Dictionary::Create()),
      questions_(clsXUNQuestions::Create()),
      extra_(clsXUNFieldExtra::Create()),
      db_(clsXUNFieldDB::Create()) {}

std::shared_ptr<clsXUNField> clsXUNField::Create() {
  std::shared_ptr<clsXUNField> field = MakeObject<clsXUNField>();
  // The back reference needs the region held, so it cannot be set in the constructor.
  field->questions_->Field(field);
  return field;
}

void clsXUNField::Questions(std::shared_ptr<clsXUNQuestions> value) {
  questions_ = std::move(value);
  if (questions_) questions_->Field(SharedFrom(this));
}

void clsXUNField::RecognitionType(xunRecogType value) {
  recognition_type_ = value;
  // OCR reads on another threshold scale; leaving OCR does not restore the old value.
  if (value == xunRecogTypeOCR) threshold_ = 70;
}

int16_t clsXUNField::NumItems() const {
  return CalculateNumItems(false);
}

int32_t clsXUNField::NumMarks() const {
  return Trap("clsXUNField.NumMarks", int32_t{0}, [&]() -> int32_t {
    if (recognition_type_ != xunRecogTypeOMR) return 0;
    return Mul16(num_cols_, num_rows_);
  });
}

int16_t clsXUNField::CalculateNumItems(bool bAll) const {
  return Trap("clsXUNField.CalculateNumItems", int16_t{0}, [&]() -> int16_t {
    if (!bAll && FollowsInGroup(*this)) return 0;
    int16_t count = BaseCount(*this);
    if (!bAll && questions_) {
      for (const std::shared_ptr<clsXUNQuestion>& question : *questions_)
        if (IsHidden(*question)) count = Sub16(count, 1);
    }
    return Add16(count, DBColumns(*this));
  });
}

bool clsXUNField::DBVerify() const {
  return Trap("clsXUNField.DBVerify", false, [&] {
    return db_ && !db_->Table().empty() && !db_->LookupField().empty() &&
           (!db_->Connect().empty() || !db_->DSNName().empty() || !db_->Name().empty());
  });
}

std::shared_ptr<clsXUNField> clsXUNField::Copy(bool bKeepLink, bool bKeepKey,
                                               bool bCopyAttributes) const {
  return Trap("clsXUNField.Copy", std::shared_ptr<clsXUNField>(), [&] {
    // The member-wise copy carries every plain value; the owned objects are replaced below so
    // that the copy shares nothing with this region.
    std::shared_ptr<clsXUNField> copy(new clsXUNField(*this));
    copy->Fields(nullptr);
    copy->Key(bKeepKey ? Key() : std::string());
    if (!bKeepLink) {
      copy->link_group_ = 0;
      copy->link_start_ = false;
    }
    copy->attributes_ = bCopyAttributes && attributes_ ? basPublic::CopyDictionary(attributes_)
                                                       : Dictionary::Create();
    copy->questions_ = clsXUNQuestions::Create();
    copy->questions_->Field(copy);
    // Question copies start with an empty key, so the list gives each a fresh one; a page's
    // copy relies on that to re-point image-link regions.
    if (questions_) {
      for (const std::shared_ptr<clsXUNQuestion>& question : *questions_)
        detail::QuestionsInternals::Add(*copy->questions_, question->Copy());
    }
    // Named values too: the older region settings they hold are saved with the region.
    if (extra_) copy->extra_ = extra_->Copy();
    if (db_) copy->db_ = db_->Copy();
    return copy;
  });
}

int16_t clsXUNField::IDQuestion(xunIDType eIDType) const {
  return Trap("clsXUNField.IDQuestion", int16_t{0}, [&]() -> int16_t {
    if (!questions_) return 0;
    int32_t position = 0;
    for (const std::shared_ptr<clsXUNQuestion>& question : *questions_) {
      ++position;
      if (PlaysRole(*question, eIDType)) return To16(position);
    }
    return 0;
  });
}

int16_t clsXUNField::NumIDs(xunIDType eIDType, bool bVisibleOnly) const {
  return Trap("clsXUNField.NumIDs", int16_t{0}, [&]() -> int16_t {
    int16_t count = 0;
    if (!questions_) return count;
    for (const std::shared_ptr<clsXUNQuestion>& question : *questions_)
      if (PlaysRole(*question, eIDType) && (!bVisibleOnly || question->IDAdd()))
        count = Add16(count, 1);
    return count;
  });
}

void clsXUNField::Free() {
  Trap("clsXUNField.Free", [&] {
    if (questions_) {
      questions_->Free();
      questions_->Field(nullptr);
    }
    questions_.reset();
    extra_.reset();
    db_.reset();
    attributes_.reset();
    Fields(nullptr);
  });
}

int16_t clsXUNField::GetItemIndex(int16_t iQuestionIndex) const {
  return Trap("clsXUNField.GetItemIndex", int16_t{0}, [&]() -> int16_t {
    if (!FollowsInGroup(*this)) return ItemWithin(*this, iQuestionIndex);
    const std::shared_ptr<clsXUNField> first = GroupFirst(*this);
    return first ? ItemWithin(*first, iQuestionIndex) : int16_t{0};
  });
}

int32_t clsXUNField::ReturnIndex(bool bInTemplate) const {
  return Trap("clsXUNField.ReturnIndex", int32_t{0}, [&]() -> int32_t {
    const std::shared_ptr<clsXUNFields> list = Fields();
    if (!list) return 0;
    const int32_t position = PositionIn(*list, this);
    if (!bInTemplate) return position;
    // Like a page's: without a template to number items in, the position is the answer.
    const std::shared_ptr<clsXUNPage> page = list->Page();
    const std::shared_ptr<clsXUNTemplate> owner = page ? page->Template() : nullptr;
    if (!owner) return position;
    std::shared_ptr<clsXUNField> first = FollowsInGroup(*this) ? GroupFirst(*this) : nullptr;
    const int32_t numbered = first ? PositionIn(*list, first.get()) : position;
    return owner->GetItemIndex(To16(page->ReturnIndex(false)), To16(numbered), true);
  });
}

std::shared_ptr<clsXUNPage> clsXUNField::Page() const {
  const std::shared_ptr<clsXUNFields> list = Fields();
  return list ? list->Page() : nullptr;
}

// IsRegistered, BubbleSearch, Register, BuildExtra, GetBarcodeType and Align work on the page
// image: they live with the rest of the image work in xun/recognition.

}  // namespace xun
