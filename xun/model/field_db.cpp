#include "xun/model/field_db.h"

#include "xun/support/trap.h"

namespace xun {

clsXUNFieldDB::clsXUNFieldDB() : return_fields_(clsXUNStringItems::Create()) {}

std::shared_ptr<clsXUNFieldDB> clsXUNFieldDB::Create() {
  return MakeObject<clsXUNFieldDB>();
}

std::shared_ptr<clsXUNFieldDB> clsXUNFieldDB::Copy() const {
  return Trap("clsXUNFieldDB.Copy", std::shared_ptr<clsXUNFieldDB>(), [&] {
    // The member-wise copy carries every setting; only the column list must not be shared.
    std::shared_ptr<clsXUNFieldDB> copy(new clsXUNFieldDB(*this));
    if (return_fields_) copy->return_fields_ = return_fields_->Copy();
    return copy;
  });
}

}  // namespace xun
