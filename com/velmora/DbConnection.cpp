// clsDbConnection: the connection holder. Its connection string comes from TOVRAND_DSN (a mysql://
// URL or an odbc: string) or from the registry value ConnectionString under Software\Tovrand
// (HKEY_CURRENT_USER first, then HKEY_LOCAL_MACHINE). OpenConnection really connects, so that an
// unreachable database fails it.

#include <memory>
#include <optional>
#include <string>

#include "Velmora_h.h"
#include "com/ComHost.h"
#include "com/velmora/VelmoraObjects.h"
#include "engine/ConnectionSettings.h"
#include "odbc/OdbcConnection.h"

namespace tovrand::velmora {

namespace {

std::optional<std::string> registryString(HKEY root) {
  wchar_t buffer[2048];
  DWORD size = sizeof buffer;
  LONG rc =
      RegGetValueW(root, L"Software\\Tovrand", L"ConnectionString", RRF_RT_REG_SZ, nullptr, buffer, &size);
  if (rc != ERROR_SUCCESS) return std::nullopt;
  return com::fromWide(buffer, wcsnlen(buffer, size / sizeof(wchar_t)));
}

// The connection string as ADO would hold it (an MSDASQL string or a plain ODBC one): from TOVRAND_DSN
// converted to ODBC, else the registry value; "" when none is configured.
std::string configuredConnectionString() {
  std::string dsn = com::environmentVariable(L"TOVRAND_DSN");
  if (!dsn.empty()) return ConnectionSettings::parse(dsn, "TOVRAND_DSN").odbcConnectionString();
  for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
    if (auto text = registryString(root); text && !text->empty()) return *text;
  return {};
}

// The settings to connect with, or nullopt when none is configured.
std::optional<ConnectionSettings> configuredSettings() {
  std::string dsn = com::environmentVariable(L"TOVRAND_DSN");
  if (!dsn.empty()) return ConnectionSettings::parse(dsn, "TOVRAND_DSN");
  std::string text = configuredConnectionString();
  if (text.empty()) return std::nullopt;
  return ConnectionSettings::parse("odbc:" + com::odbcPartOf(text), "the registry value ConnectionString");
}

const IID kConnectionIid = com::guidOf("{8C765E4B-CDFD-4C69-8674-357BE0211BFA}");
const IID kDbConnectionIid = com::guidOf("{F89D04E3-7133-478D-8BE7-9C93F61E3A71}");

// The Connection object: what the component reads the ODBC connection string from.
class ConnectionObject final : public DualObject<_clsConnection> {
 public:
  explicit ConnectionObject(std::string connectionString)
      : DualObject(kConnectionIid), connectionString_(std::move(connectionString)) {}

  HRESULT STDMETHODCALLTYPE get_ConnectionString(BSTR* value) override {
    if (!value) return E_POINTER;
    *value = com::Bstr::fromUtf8(connectionString_).detach();
    return S_OK;
  }

 private:
  std::string connectionString_;
};

class DbConnectionObject final : public DualObject<_clsDbConnection> {
 public:
  DbConnectionObject() : DualObject(kDbConnectionIid) {}

  HRESULT STDMETHODCALLTYPE get_Connection(IDispatch** value) override {
    if (!value) return E_POINTER;
    *value = nullptr;
    std::string text;
    try {
      text = configuredConnectionString();
    } catch (const VbError& e) {
      return com::reportError(com::hresultOf(e.number()), e.description(), iid(), "Velmora.clsDbConnection");
    }
    auto object = std::make_unique<ConnectionObject>(text);
    *value = object.release();
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE OpenConnection() override {
    try {
      std::optional<ConnectionSettings> settings = configuredSettings();
      if (!settings)
        throw VbError(vberr::kProviderError,
                      "No database connection is configured: set TOVRAND_DSN or the registry value "
                      "Software\\Tovrand\\ConnectionString");
      connection_ = OdbcConnection::acquire(*settings);
      return S_OK;
    } catch (...) {
      VbError e = toVbError(std::current_exception());
      return com::reportError(com::hresultOf(e.number()), e.description(), iid(), "Velmora.clsDbConnection");
    }
  }

  HRESULT STDMETHODCALLTYPE CloseConnection() override {
    connection_.reset();
    return S_OK;
  }

 private:
  std::shared_ptr<OdbcConnection> connection_;
};

}  // namespace

HRESULT createDbConnection(REFIID riid, void** out) {
  return com::createInstance<DbConnectionObject>(riid, out);
}

}  // namespace tovrand::velmora
