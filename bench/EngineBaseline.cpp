// The engine alone, for what it adds to bare ODBC apart from the members' own work.
#include "bench/Baseline.h"
#include "frame/DbConnection.h"
#include "host/NativeHost.h"
#include "odbc/BoundStatement.h"
#include "odbc/OdbcConnection.h"

namespace tovrand::bench {

namespace {

class EngineBaseline final : public Baseline {
 public:
  explicit EngineBaseline(const ConnectionSettings& settings)
      : host_(std::make_shared<NativeHost>(settings, nullptr)), holder_(host_->newDbConnection()) {
    holder_->OpenConnection();
    connection_ = holder_->Connection();
    odbc_ = std::dynamic_pointer_cast<OdbcConnection>(connection_);
    if (!odbc_) fatal("engine replay: not an ODBC connection");
  }
  ~EngineBaseline() override { holder_->CloseConnection(); }
  EngineBaseline(const EngineBaseline&) = delete;
  EngineBaseline& operator=(const EngineBaseline&) = delete;

  const char* name() const override { return "engine"; }

  std::size_t run(const Step& step) override {
    switch (step.form) {
      case Step::Form::Query:
      case Step::Form::Buffered: {
        auto rs = host_->newRecordset();
        rs->Open(step.sql, connection_, adOpenForwardOnly, adLockReadOnly, adCmdText);
        std::size_t rows = 0;
        while (!rs->EOF_()) {
          for (const ColumnType& c : step.columns) {
            Value v = rs->getField(c.name);
            sink_ += v.type() == Value::Type::String ? static_cast<double>(v.str().size()) : 1.0;
          }
          rs->MoveNext();
          ++rows;
        }
        rs->Close();
        return rows;
      }
      case Step::Form::Execute: {
        auto rs = host_->newRecordset();
        rs->Open(step.sql, connection_, adOpenForwardOnly, adLockReadOnly, adCmdText);
        if (rs->IsOpen()) rs->Close();
        return 0;
      }
      case Step::Form::Write:
        runBoundStatement(*odbc_, step.sql, step.values);
        return 0;
    }
    return 0;
  }

 private:
  std::shared_ptr<NativeHost> host_;
  std::shared_ptr<DbConnection> holder_;
  std::shared_ptr<Connection> connection_;
  std::shared_ptr<OdbcConnection> odbc_;
  double sink_ = 0;  // keeps the reads observable
};

}  // namespace

std::unique_ptr<Baseline> engineBaseline(const ConnectionSettings& settings) {
  return std::make_unique<EngineBaseline>(settings);
}

}  // namespace tovrand::bench
