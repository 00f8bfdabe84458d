#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "frame/Recordset.h"

namespace tovrand::engine {

// What a recordset engine does for ADO's Recordset (see engine/RecordsetCore.h, which does it).
class RecordsetOperations {
 public:
  virtual ~RecordsetOperations() = default;
  // Open, with the recordset whose properties the arguments set.
  virtual void openOn(Recordset& recordset, const std::string& source,
                      const std::shared_ptr<Connection>& connection, int cursorType, int lockType) = 0;
  virtual bool isOpen() const = 0;
  virtual bool atBOF() = 0;
  virtual bool atEOF() = 0;
  virtual Value fieldValue(std::string_view name) = 0;
  virtual void assignField(std::string_view name, const Value& value) = 0;
  virtual void moveNext() = 0;
  virtual void addNew() = 0;
  virtual void update() = 0;
  virtual void close() = 0;
};

// ADO's Recordset on one of the engines: every member handed to the engine's operations.
class EngineRecordset : public Recordset {
 public:
  // A pending AddNew or edit is discarded, never stored.
  ~EngineRecordset() override;

  void Open(const std::string& source, const std::shared_ptr<Connection>& connection, int cursorType,
            int lockType, int options) override;
  bool IsOpen() const override;
  bool BOF() override;
  bool EOF_() override;
  Value getField(std::string_view name) override;
  void setField(std::string_view name, const Value& value) override;
  // A pending AddNew or edit is stored first, as ADO does.
  void MoveNext() override;
  void AddNew() override;
  void Update() override;
  // A pending AddNew or edit is discarded.
  void Close() override;

 protected:
  explicit EngineRecordset(std::unique_ptr<RecordsetOperations> operations);

 private:
  std::unique_ptr<RecordsetOperations> operations_;
};

}  // namespace tovrand::engine
