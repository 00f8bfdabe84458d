#include "engine/EngineRecordset.h"

namespace tovrand::engine {

EngineRecordset::EngineRecordset(std::unique_ptr<RecordsetOperations> operations)
    : operations_(std::move(operations)) {}
EngineRecordset::~EngineRecordset() = default;

void EngineRecordset::Open(const std::string& source, const std::shared_ptr<Connection>& connection,
                           int cursorType, int lockType, int /*options*/) {
  operations_->openOn(*this, source, connection, cursorType, lockType);
}
bool EngineRecordset::IsOpen() const {
  return operations_->isOpen();
}
bool EngineRecordset::BOF() {
  return operations_->atBOF();
}
bool EngineRecordset::EOF_() {
  return operations_->atEOF();
}
Value EngineRecordset::getField(std::string_view name) {
  return operations_->fieldValue(name);
}
void EngineRecordset::setField(std::string_view name, const Value& value) {
  operations_->assignField(name, value);
}
void EngineRecordset::MoveNext() {
  operations_->moveNext();
}
void EngineRecordset::AddNew() {
  operations_->addNew();
}
void EngineRecordset::Update() {
  operations_->update();
}
void EngineRecordset::Close() {
  operations_->close();
}

}  // namespace tovrand::engine
