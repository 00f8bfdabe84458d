#include "frame/DataObject.h"

#include <exception>

#include "frame/Messages.h"
#include "vb/VbError.h"

namespace tovrand {

DataObject::DataObject(std::shared_ptr<Host> host) : host_(std::move(host)) {
  dbConnection().OpenConnection();
}

DataObject::~DataObject() {
  // A destructor cannot raise; a failing CloseConnection leaves nothing the caller could act on.
  try {
    dbConnection().CloseConnection();
  } catch (...) {
  }
}

DbConnection& DataObject::dbConnection() {
  if (!m_DbConnection) m_DbConnection = host_->newDbConnection();
  return *m_DbConnection;
}

Recordset& DataObject::recordset() {
  if (!m_Recordset) m_Recordset = host_->newRecordset();
  return *m_Recordset;
}

namespace {
void apply(std::int16_t& result, const HandlerOptions& options) {
  if (options.result) result = *options.result;
}
}  // namespace

void DataObject::writeHandler(std::int16_t& result, HandlerOptions options) {
  VbError error = toVbError(std::current_exception());
  dropRecordset();
  apply(result, options);
  if (error.number() == vberr::kMultipleStep)
    messages().show(kTooLongMessage, vbInformation, kTitleQuenta);
  else
    messages().show(error.description(), vbInformation, kTitleQuenta);
}

void DataObject::queryHandler(std::int16_t& result, HandlerOptions options) {
  VbError error = toVbError(std::current_exception());
  dropRecordset();
  apply(result, options);
  messages().show(error.description(), vbInformation, kTitleQuenta);
}

void DataObject::criticalHandler(std::int16_t& result, const char* title, HandlerOptions options) {
  VbError error = toVbError(std::current_exception());
  apply(result, options);
  messages().show(error.description(), vbCritical, title);
  dropRecordset();
}

}  // namespace tovrand
