// The database lookup settings of a region.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "xun/export.h"
#include "xun/model/string_items.h"
#include "xun/support/object.h"

namespace xun {

class XUN_API clsXUNFieldDB : public Object {
 public:
  static std::shared_ptr<clsXUNFieldDB> Create();

  // The database columns whose values are returned (each one more item of the region).
  std::shared_ptr<clsXUNStringItems> ReturnFields() const { return return_fields_; }
  void ReturnFields(std::shared_ptr<clsXUNStringItems> value) { return_fields_ = std::move(value); }
  const std::string& Name() const { return name_; }
  void Name(std::string value) { name_ = std::move(value); }
  const std::string& Catalog() const { return catalog_; }
  void Catalog(std::string value) { catalog_ = std::move(value); }
  const std::string& Table() const { return table_; }
  void Table(std::string value) { table_ = std::move(value); }
  const std::string& LookupField() const { return lookup_field_; }
  void LookupField(std::string value) { lookup_field_ = std::move(value); }
  const std::string& ReplaceField() const { return replace_field_; }
  void ReplaceField(std::string value) { replace_field_ = std::move(value); }
  int16_t DBType() const { return db_type_; }
  void DBType(int16_t value) { db_type_ = value; }
  const std::string& Connect() const { return connect_; }
  void Connect(std::string value) { connect_ = std::move(value); }
  bool DirectoryBased() const { return directory_based_; }
  void DirectoryBased(bool value) { directory_based_ = value; }
  bool DSNBased() const { return dsn_based_; }
  void DSNBased(bool value) { dsn_based_ = value; }
  const std::string& DSNName() const { return dsn_name_; }
  void DSNName(std::string value) { dsn_name_ = std::move(value); }
  const std::string& User() const { return user_; }
  void User(std::string value) { user_ = std::move(value); }
  // Held in clear text; the template file stores it scrambled.
  const std::string& Password() const { return password_; }
  void Password(std::string value) { password_ = std::move(value); }
  bool Valid() const { return valid_; }
  void Valid(bool value) { valid_ = value; }
  // Whether the connection is opened for Unicode text (the file's DBUnicode key).
  bool Unicode() const { return unicode_; }
  void Unicode(bool value) { unicode_ = value; }

  // A new settings object with the same values and its own copy of the return columns.
  std::shared_ptr<clsXUNFieldDB> Copy() const;

 private:
  template <class>
  friend struct detail::ObjectAllocator;
  clsXUNFieldDB();
  std::shared_ptr<clsXUNStringItems> return_fields_;
  std::string name_, catalog_, table_, lookup_field_, replace_field_;
  int16_t db_type_ = 0;
  std::string connect_;
  bool directory_based_ = false, dsn_based_ = false;
  std::string dsn_name_, user_, password_;
  bool valid_ = false, unicode_ = false;
};

}  // namespace xun
