#include "com/ComHost.h"

#include <windows.h>

#include <cstdlib>

#include "com/ComSupport.h"
#include "com/DispatchEntityStore.h"
#include "odbc/OdbcDbConnection.h"
#include "odbc/OdbcRecordset.h"
#include "vb/RegionalSettings.h"
#include "vb/Text.h"

namespace tovrand::com {

namespace {

// Velmora's clsDbConnection as the component's m_DbConnection. OpenConnection and CloseConnection go
// to the Velmora object; the connection the recordsets run on is the process's shared ODBC connection
// for the connection string Velmora's Connection object carries.
class ComDbConnection final : public DbConnection {
 public:
  ComDbConnection() {
    CLSID clsid{};
    HRESULT hr = CLSIDFromProgID(L"Velmora.clsDbConnection", &clsid);
    if (FAILED(hr)) throw VbError(429, "ActiveX component can't create object: Velmora.clsDbConnection");
    hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                          reinterpret_cast<void**>(velmora_.put()));
    if (FAILED(hr)) throw errorOf(hr);
  }

  std::shared_ptr<tovrand::Connection> Connection() override {
    if (!odbc_)
      throw VbError(3709,
                    "The connection cannot be used to perform this operation. It is either closed or "
                    "invalid in this context.");
    return odbc_->Connection();
  }

  void OpenConnection() override {
    invokeByName(velmora_.get(), "OpenConnection", DISPATCH_METHOD, nullptr, 0, nullptr);
    auto holder = std::make_shared<OdbcDbConnection>(settingsFor(connectionString()));
    applyRegionalSettings(holder->settings());
    holder->OpenConnection();
    odbc_ = std::move(holder);
  }

  void CloseConnection() override {
    invokeByName(velmora_.get(), "CloseConnection", DISPATCH_METHOD, nullptr, 0, nullptr);
    if (odbc_) odbc_->CloseConnection();
    odbc_.reset();
  }

 private:
  // Connection.ConnectionString of the Velmora object.
  std::string connectionString() {
    if (!environmentVariable(L"TOVRAND_DSN").empty()) return {};
    Variant connection;
    invokeByName(velmora_.get(), "Connection", DISPATCH_PROPERTYGET, nullptr, 0, connection.get());
    IDispatch* object = connection->vt == VT_DISPATCH ? connection->pdispVal : nullptr;
    if (!object) throw VbError::of(vberr::kObjectRequired);
    Variant text;
    invokeByName(object, "ConnectionString", DISPATCH_PROPERTYGET, nullptr, 0, text.get());
    return CStr(valueOf(*text.get()));
  }

  static void applyRegionalSettings(const ConnectionSettings& settings) {
    if (settings.shortDate.empty() && settings.longTime.empty()) return;
    RegionalSettings regional = RegionalSettings::current();
    if (!settings.shortDate.empty()) regional.shortDate = settings.shortDate;
    if (!settings.longTime.empty()) regional.longTime = settings.longTime;
    RegionalSettings::setCurrent(std::move(regional));
  }

  ComRef<IDispatch> velmora_;
  std::shared_ptr<OdbcDbConnection> odbc_;
};

// Splits "key=value;key=value" where a value may be quoted with " or '.
std::optional<std::string> valueOfKey(std::string_view text, std::string_view wanted) {
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && (text[i] == ';' || text[i] == ' ')) ++i;
    std::size_t eq = text.find('=', i);
    if (eq == std::string_view::npos) return std::nullopt;
    std::string_view key = text.substr(i, eq - i);
    while (!key.empty() && key.back() == ' ') key.remove_suffix(1);
    std::size_t v = eq + 1;
    std::string value;
    if (v < text.size() && (text[v] == '"' || text[v] == '\'')) {
      char quote = text[v];
      std::size_t end = text.find(quote, v + 1);
      if (end == std::string_view::npos) end = text.size();
      value = std::string(text.substr(v + 1, end - v - 1));
      i = end + 1;
    } else {
      std::size_t end = text.find(';', v);
      if (end == std::string_view::npos) end = text.size();
      value = std::string(text.substr(v, end - v));
      i = end;
    }
    if (equalsIgnoreCase(key, wanted)) return value;
  }
  return std::nullopt;
}

}  // namespace

std::string odbcPartOf(std::string_view connectionString) {
  if (auto extended = valueOfKey(connectionString, "Extended Properties")) return *extended;
  return std::string(connectionString);
}

ConnectionSettings settingsFor(std::string_view connectionString) {
  std::string dsn = environmentVariable(L"TOVRAND_DSN");
  if (!dsn.empty()) return ConnectionSettings::parse(dsn, "TOVRAND_DSN");
  std::string odbc = odbcPartOf(connectionString);
  if (odbc.empty()) throw VbError(vberr::kProviderError, "Velmora's connection string is empty");
  return ConnectionSettings::parse("odbc:" + odbc, "Velmora's connection string");
}

void MessageBoxSink::show(const std::string& text, int style, const std::string& title) {
  if (environmentVariable(L"TOVRAND_MESSAGES") == "stderr") {
    std::string line = "MESSAGE style=" + std::to_string(style) + " title=" + title + " text=" + text + "\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()), &written,
              nullptr);
    return;
  }
  std::wstring wideText = toWide(text);
  std::wstring wideTitle = toWide(title);
  MessageBoxW(GetActiveWindow(), wideText.c_str(), wideTitle.c_str(), static_cast<UINT>(style));
}

ComHost::ComHost() : messages_(std::make_shared<MessageBoxSink>()) {}

std::shared_ptr<DbConnection> ComHost::newDbConnection() {
  return std::make_shared<ComDbConnection>();
}

std::shared_ptr<Recordset> ComHost::newRecordset() {
  return std::make_shared<OdbcRecordset>();
}

Entity ComHost::newEntity(const EntityClass& cls) {
  return newVelmoraEntity(cls);
}

MessageSink& ComHost::messages() {
  return *messages_;
}

}  // namespace tovrand::com
