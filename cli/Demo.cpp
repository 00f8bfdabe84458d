#include "cli/Demo.h"

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "vb/Value.h"

namespace tovrand::cli {

namespace {

class DemoFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The sales order the road starts from: new in the sample data, its three lines not yet reviewed.
constexpr double kOrderNo = 2611015;
constexpr const char* kOrderText = "2611015";
constexpr const char* kCustNo = "C001";
constexpr const char* kCorderNo = "HM-PO-261118";
// How each production order is to be made, as the final review decides it (line by line).
const char* const kWays[] = {"自制", "直接采购", "自制"};
// The order whose planning is released at the end.
constexpr std::size_t kReleased = 2;

// Columns a character takes on a terminal: East Asian wide and full-width characters two.
std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < text.size();) {
    auto c = static_cast<unsigned char>(text[i]);
    std::uint32_t cp = c;
    std::size_t length = 1;
    if (c >= 0xF0) {
      cp = c & 0x07u;
      length = 4;
    } else if (c >= 0xE0) {
      cp = c & 0x0Fu;
      length = 3;
    } else if (c >= 0xC0) {
      cp = c & 0x1Fu;
      length = 2;
    }
    for (std::size_t k = 1; k < length && i + k < text.size(); ++k)
      cp = (cp << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3Fu);
    i += length;
    const bool wide = (cp >= 0x1100 && cp <= 0x115F) || (cp >= 0x2E80 && cp <= 0xA4CF) ||
                      (cp >= 0xAC00 && cp <= 0xD7A3) || (cp >= 0xF900 && cp <= 0xFAFF) ||
                      (cp >= 0xFE30 && cp <= 0xFE4F) || (cp >= 0xFF00 && cp <= 0xFF60) ||
                      (cp >= 0xFFE0 && cp <= 0xFFE6) || (cp >= 0x1F300 && cp <= 0x1FAFF) ||
                      (cp >= 0x20000 && cp <= 0x3FFFD);
    width += wide ? 2 : 1;
  }
  return width;
}

// Aligned columns for a person to read; numbers right-aligned.
class Table {
 public:
  explicit Table(std::vector<std::string> headings) : headings_(std::move(headings)) {}
  Table& row(std::vector<std::string> cells) {
    cells.resize(headings_.size());
    rows_.push_back(std::move(cells));
    return *this;
  }
  void print(std::ostream& out) const {
    std::vector<std::size_t> widths(headings_.size());
    std::vector<bool> numeric(headings_.size(), !rows_.empty());
    for (std::size_t c = 0; c < headings_.size(); ++c) {
      widths[c] = displayWidth(headings_[c]);
      for (const auto& r : rows_) {
        widths[c] = std::max(widths[c], displayWidth(r[c]));
        if (!r[c].empty() && r[c].find_first_not_of("0123456789.-E+") != std::string::npos)
          numeric[c] = false;
      }
    }
    auto line = [&](const std::vector<std::string>& cells) {
      std::string text = "     ";
      for (std::size_t c = 0; c < cells.size(); ++c) {
        std::string pad(widths[c] - displayWidth(cells[c]), ' ');
        text += numeric[c] ? pad + cells[c] : cells[c] + (c + 1 < cells.size() ? pad : "");
        if (c + 1 < cells.size()) text += "  ";
      }
      while (!text.empty() && text.back() == ' ') text.pop_back();
      out << text << '\n';
    };
    line(headings_);
    for (const auto& r : rows_) line(r);
  }

 private:
  std::vector<std::string> headings_;
  std::vector<std::vector<std::string>> rows_;
};

// A JSON value as the run time prints it: numbers in their shortest form, dates without a midnight
// time, texts as they are.
std::string shown(const Json& j) {
  if (j.is_null()) return "";
  if (j.is_string()) {
    const std::string& s = j.get_ref<const std::string&>();
    if (s.size() == 19 && s[4] == '-' && s[7] == '-' && s[10] == ' ' && s.substr(11) == "00:00:00")
      return s.substr(0, 10);
    return s;
  }
  if (j.is_number_integer()) return std::to_string(j.get<long long>());
  if (j.is_number()) return CStr(j.get<double>());
  return j.dump();
}

double number(const Json& j) {
  if (j.is_number()) return j.get<double>();
  if (j.is_string()) return CDbl(Value(j.get<std::string>()));
  return 0;
}

class Demo {
 public:
  Demo(ScriptRunner& runner, std::ostream& out, const DemoOptions& options)
      : runner_(runner), out_(out), options_(options) {}

  void run() {
    tellEngine();
    say("Tovrand demo: one sales order on its way from review to released planning");
    say("(curdate() is pinned to 2026-11-22, the date the sample data is set on)");
    newObject("chk", "clsDataPOrderChk");
    newObject("order", "clsDataPOrder");
    newObject("mrph", "clsDataPMrph");
    newObject("mrpi", "clsDataPMrpi");
    allocateNumbers();
    signOff();
    createOrders();
    plan();
    purchase();
    release();
    for (const char* name : {"mrpi", "mrph", "order", "chk"}) send(Json{{"release", name}});
    say("");
    say("done: every call answered as expected.");
  }

 private:
  struct Line {
    std::string no, item, customerItem, due;
    double quantity = 0;
    double prodNo = 0;
  };

  // --- plumbing ------------------------------------------------------------------------------------

  // Which recordset engine answers the calls that follow: a first line of its own, and in the JSON
  // form a JSON line, so that every line still reads as JSON.
  void tellEngine() {
    const std::string name = runner_.engine();
    if (name.empty()) return;
    if (options_.json) {
      out_ << Json{{"engine", name}}.dump() << '\n';
      return;
    }
    say("Engine: " + name + (name == "mariadb" ? " (MariaDB Connector/C)" : " (ODBC)"));
  }

  void say(const std::string& text) {
    if (!options_.json) out_ << text << '\n';
  }
  void heading(int step, const std::string& title) {
    say("");
    say(std::to_string(step) + ". " + title);
  }
  void table(const Table& t) {
    if (!options_.json) t.print(out_);
  }

  Json send(const Json& request) {
    Json answer = runner_.answer(request.dump());
    if (options_.json) out_ << answer.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
    if (answer.contains("error"))
      throw DemoFailure(request.dump() + " answered: " + answer["error"].get<std::string>());
    return answer;
  }

  void newObject(const std::string& name, const std::string& cls) {
    send(Json{{"new", name}, {"class", cls}});
    classes_.emplace_back(name, cls);
  }

  std::string className(const std::string& object) const {
    for (const auto& [name, cls] : classes_)
      if (name == object) return cls;
    return object;
  }

  // A member called by name; `expected` is the result the sample data gives (null: not checked).
  // No message box may show. The call is printed with `what` in place of its arguments.
  // `quiet`: the call line is left out (a table shows the results instead).
  Json call(const std::string& object, const std::string& member, Json args, const Json& expected,
            const std::string& what, bool quiet = false) {
    Json answer = send(Json{{"call", object + "." + member}, {"args", std::move(args)}});
    const std::string qualified = className(object) + "." + member;
    if (!quiet || options_.trace) say("   " + qualified + "(" + what + ") -> " + shown(answer["result"]));
    if (options_.trace && answer.contains("sql")) {
      for (const Json& s : answer["sql"]) {
        if (s.is_string())
          say("       sql: " + s.get<std::string>());
        else
          say("       engine: " + s["engine"].get<std::string>());
      }
    }
    if (!answer["messages"].empty())
      throw DemoFailure(qualified + "(" + what +
                        ") showed a message box: " + answer["messages"][0]["text"].dump());
    if (!expected.is_null() && answer["result"] != expected)
      throw DemoFailure(qualified + "(" + what + ") answered " + shown(answer["result"]) + ", expected " +
                        shown(expected));
    return answer;
  }

  // Rows of a query run on the object's database outside the calls, to show what they wrote.
  Json rows(const std::string& sql) {
    Json answer = send(Json{{"sql", sql}});
    return answer.value("rows", Json::array());
  }

  // --- the road ------------------------------------------------------------------------------------

  void allocateNumbers() {
    heading(1, "Review: production numbers for the three lines of sales order 2611015");
    Json found = rows(
        "select F_No, F_ItemNo, F_CItemNo, F_OrderQty, F_DeliverDate, F_ProdNo from t_borderi where "
        "F_OrderNo=" +
        std::string(kOrderText) + " order by F_No");
    if (found.size() != 3)
      throw DemoFailure("sales order 2611015 of the sample data has " + std::to_string(found.size()) +
                        " lines, not 3: the demo needs schema/sample.sql as it stands");
    Json collection = Json::array();
    for (const Json& r : found) {
      if (!r[5].is_null())
        throw DemoFailure("line " + shown(r[0]) + " of sales order 2611015 has production number " +
                          shown(r[5]) +
                          " already: the demo needs the sample data as schema/sample.sql loads it");
      Line line{shown(r[0]), shown(r[1]), shown(r[2]), shown(r[4]), number(r[3]), 0};
      lines_.push_back(line);
      collection.push_back(Json{{"F_OrderNo", kOrderNo},
                                {"F_No", line.no},
                                {"F_ItemNo", line.item},
                                {"F_CItemNo", line.customerItem},
                                {"F_OrderQty", line.quantity},
                                {"F_DeliverDate", r[4]}});
    }
    call("chk", "AddRecord",
         Json{{"objColl", collection},
              {"OrderNo", kOrderText},
              {"CustNo", kCustNo},
              {"CorderNo", kCorderNo},
              {"LenInt", 4}},
         1, "3 lines, \"2611015\", \"C001\", \"HM-PO-261118\", 4");

    Table numbers({"line", "item", "customer item", "quantity", "due", "production number"});
    Json allocated = rows("select F_No, F_ProdNo from t_borderi where F_OrderNo=" + std::string(kOrderText) +
                          " order by F_No");
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      lines_[i].prodNo = number(allocated[i][1]);
      numbers.row({lines_[i].no, lines_[i].item, lines_[i].customerItem, shown(lines_[i].quantity),
                   lines_[i].due, shown(lines_[i].prodNo)});
    }
    say("   November already has 2026110001 to 2026110003, so the numbers go on from the month's largest:");
    table(numbers);
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const double expected = 2026110004.0 + static_cast<double>(i);
      if (lines_[i].prodNo != expected)
        throw DemoFailure("line " + lines_[i].no + " received " + shown(lines_[i].prodNo) + ", expected " +
                          shown(expected));
    }
    Json view = call("chk", "QueryProdNoView", Json{{"Entity", {{"F_ProdNo", lines_[0].prodNo}}}}, 1,
                     shown(lines_[0].prodNo));
    say("     its review row: item " + shown(view["args"]["Entity"]["F_ItemNo"]) + ", quantity " +
        shown(view["args"]["Entity"]["F_OrderCount"]) + ", due " +
        shown(view["args"]["Entity"]["F_DeliverDate"]));
    Json flags = rows("select F_Flags from t_borderh where F_OrderNo=" + std::string(kOrderText));
    say("     sales order 2611015 is flagged as taken over: T_BOrderh.F_Flags = " + shown(flags[0][0]));
  }

  void signOff() {
    heading(2, "Review: the seven departments sign the three production orders off");
    struct Department {
      const char* name;
      const char* english;
      const char* checker;
      const char* time;
      Json fields;
    };
    const std::vector<Department> departments = {
        {"业务", "sales", "王芳", "2026-11-22 09:10:00",
         Json{{"F_BStradCon", 1}, {"F_BSAlertNote", ""}, {"F_BSNote", "按框架协议价格"}}},
        {"工程", "engineering", "张建国", "2026-11-22 10:20:00",
         Json{{"F_EGAdmit", 1}, {"F_EGModel", 1}, {"F_EGNote", "BOM已审核"}}},
        {"仓库", "warehouse", "赵磊", "2026-11-22 11:00:00",
         Json{{"F_WPStock", 0},
              {"F_WIEndtime", "2026-12-20"},
              {"F_WPEndTime", "2026-12-25"},
              {"F_WINote", ""}}},
        {"采购", "purchasing", "孙丽", "2026-11-22 13:30:00", Json{{"F_PUprovider", 1}, {"F_PUNote", ""}}},
        {"品保", "quality", "周涛", "2026-11-22 14:00:00", Json{{"F_QCStd", 1}, {"F_QCNote", "按企业标准"}}},
        {"生管", "production control", "吴强", "2026-11-22 15:00:00",
         Json{{"F_MKDate", 1}, {"F_MKNote", ""}}},
        {"终审", "final review", "郑总", "2026-11-22 17:00:00", Json{{"F_CSNote", "同意"}}},
    };
    // Each department's checker and time columns, by the names of the entity's properties.
    const char* checkerOf[] = {"F_BSChecker", "F_EGChecker", "F_WIChecker", "F_PUChecker",
                               "F_QChecker",  "F_MKChecker", "F_CSChecker"};
    const char* timeOf[] = {"F_BSCheckTime", "F_EGCheckTime", "F_WIChecktime", "F_PUCheckTime",
                            "F_QCheckTime",  "F_MKCheckTime", "F_CSCheckTime"};
    std::vector<std::string> headings = {"department", "checker", "checked at"};
    for (const Line& l : lines_) headings.push_back(shown(l.prodNo));
    Table results(headings);
    for (std::size_t d = 0; d < departments.size(); ++d) {
      const Department& dep = departments[d];
      std::vector<std::string> cells = {std::string(dep.name) + " (" + dep.english + ")", dep.checker,
                                        std::string(dep.time).substr(11, 5)};
      for (std::size_t i = 0; i < lines_.size(); ++i) {
        Json entity = dep.fields;
        entity["F_ProdNo"] = lines_[i].prodNo;
        entity[checkerOf[d]] = dep.checker;
        entity[timeOf[d]] = dep.time;
        if (d == 2) entity["F_WIFill"] = lines_[i].quantity;
        if (d == 6) entity["F_Way"] = kWays[i];
        Json answer = call("chk", "UpdateRecord", Json{{"Entity", entity}, {"stypeName", dep.name}}, 1,
                           shown(lines_[i].prodNo) + ", \"" + dep.name + "\"", true);
        cells.push_back("-> " + shown(answer["result"]));
      }
      results.row(cells);
    }
    say("   clsDataPOrderChk.UpdateRecord(Entity, stypeName) for each department and order; the results:");
    table(results);

    Table loaded(
        {"production number", "way", "sales", "engineering", "warehouse fill", "final review", "status"});
    for (const Line& l : lines_) {
      // The load never reports success: 0 is its result, the filled entity its answer.
      Json answer = call("chk", "QueryAll", Json{{"ProdNo", l.prodNo}}, 0, shown(l.prodNo));
      const Json& e = answer["args"]["Entity"];
      if (e["F_ProdNo"] != Json(l.prodNo))
        throw DemoFailure("QueryAll did not load review " + shown(l.prodNo));
      loaded.row({shown(e["F_ProdNo"]), shown(e["F_Way"]),
                  shown(e["F_BSChecker"]) + " " + shown(e["F_BSCheckTime"]),
                  shown(e["F_EGChecker"]) + " admit " + shown(e["F_EGAdmit"]), shown(e["F_WIFill"]),
                  shown(e["F_CSChecker"]) + " " + shown(e["F_CSNote"]), shown(e["F_Status"])});
    }
    say("   the finished reviews as QueryAll loads them (its result is always 0; F_Status, never set by a");
    say("   department, reads as 2):");
    table(loaded);
  }

  void createOrders() {
    heading(3, "Production orders");
    Table orders({"production number", "item", "mode", "quantity", "due", "salesperson"});
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const Line& l = lines_[i];
      Json saler =
          call("chk", "QuerySalerID", Json{{"Entity", {{"F_ProdNo", l.prodNo}}}}, 1, shown(l.prodNo));
      const std::string salesperson = saler["args"]["Entity"]["F_SalerID"].get<std::string>();
      call("order", "AddRecord",
           Json{{"Entity",
                 {{"F_ProdNo", l.prodNo},
                  {"F_CustNo", kCustNo},
                  {"F_SalerID", salesperson},
                  {"F_ItemNo", l.item},
                  {"F_OrderMode", kWays[i]},
                  {"F_OrderNo", kOrderNo},
                  {"F_COrderNo", kCorderNo},
                  {"F_BalQty", l.quantity},
                  {"F_OrdQty", l.quantity},
                  {"F_DeliverDate", l.due},
                  {"F_Status", 0}}}},
           1, shown(l.prodNo));
      orders.row({shown(l.prodNo), l.item, kWays[i], shown(l.quantity), l.due, salesperson});
    }
    table(orders);
  }

  void plan() {
    heading(4, "Planning: bill of materials, requirement, stock reservation");
    Table figures({"production number", "product", "P", "C1", "X", "M", "K", "A", "AT", "S"});
    for (const Line& l : lines_) {
      Json bom = call("mrpi", "QueryItemNo", Json{{"GoodsNo", l.item}, {"StrStatus", "1"}}, 1,
                      "\"" + l.item + "\", \"1\"");
      Json planned = Json::array();
      for (const Json& member : bom["args"]["objColl"]) {
        planned.push_back(Json{{"F_ItemNo", member["F_PartNo"]},
                               {"F_Dosage", member["F_Dosage"]},
                               {"F_Waste", member["F_Waste"]},
                               {"F_LeadTime", member["F_LeadDay"]}});
      }
      call("mrph", "AddRecord1",
           Json{{"Entity", {{"F_ProdNo", l.prodNo}, {"F_ItemNo", l.item}}}, {"objCollD", planned}}, 1,
           shown(l.prodNo) + " " + l.item + ", " + std::to_string(planned.size()) + " materials");
      Json account =
          call("mrph", "AccountData", Json{{"Entity", {{"F_ProdNo", l.prodNo}, {"F_ItemNo", l.item}}}}, 1,
               shown(l.prodNo) + " " + l.item);
      const Json& a = account["args"];
      const double freeStock = std::max(0.0, number(a["BN"]) - number(a["SQ"]));
      figures.row({shown(l.prodNo), l.item, shown(a["P"]), shown(a["C1"]), shown(freeStock), shown(a["M"]),
                   shown(a["K"]), shown(a["A"]), shown(a["AT"]), shown(a["S"])});
    }
    say("   the header figures as AccountData recomputes them: P requirement, C1 open purchases, X free");
    say("   stock above safety stock, M still needed, K to buy directly, A stock taken now, AT reserved, S "
        "on hand");
    table(figures);

    Table lines({"production number", "material", "dosage", "waste", "requested", "safety stock", "status"});
    for (const Json& r :
         rows("select F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_RequestQty, F_SafeQty, F_Status "
              "from t_pmrpi where F_ProdNo between 2026110004 and 2026110006 order by F_ProdNo, "
              "F_ID")) {
      lines.row({shown(r[0]), shown(r[1]), shown(r[2]), shown(r[3]), shown(r[4]), shown(r[5]), shown(r[6])});
    }
    say("   the planning lines AddRecord1 wrote (the direct purchase 2026110005 makes nothing, so its lines");
    say("   request nothing; every line carries its product's safety stock):");
    table(lines);
    say("   the reservations AddRecord1 recorded and each material's stock not yet committed to an order");
    say("   (the header takes the free stock of its product; every line then computes with the header's");
    say("   figures, which the header's reservation has used up):");
    reservations(lines_.front().prodNo, lines_.back().prodNo);
  }

  // The reservations of a range of production orders beside each material's uncommitted stock.
  void reservations(double from, double to) {
    Table t({"production number", "material", "reserved", "uncommitted stock"});
    for (const Json& r :
         rows("select s.F_ProdNo, s.F_ItemNo, s.F_ReduceQty, h.F_NoPoStockQty from t_wstockqtys s "
              "left join t_wstockqtyh h on h.F_ItemNo = s.F_ItemNo where s.F_ProdNo between " +
              shown(from) + " and " + shown(to) + " order by s.F_ProdNo, s.F_ID")) {
      t.row({shown(r[0]), shown(r[1]), shown(r[2]), r[3].is_null() ? "(no summary row)" : shown(r[3])});
    }
    table(t);
  }

  void purchase() {
    heading(5, "Purchasing: what to buy, taking lines up");
    const double first = lines_.front().prodNo, last = lines_.back().prodNo;
    Json headers = call("mrph", "QueryByIDForPur",
                        Json{{"dblStart", first}, {"dblEnd", last}, {"intCnt", 1}, {"strItemNo", ""}}, 1,
                        shown(first) + ", " + shown(last) + ", 1, \"\"");
    Table toBuy({"production number", "item", "planned purchase"});
    for (const Json& h : headers["args"]["colPMrph"])
      toBuy.row({shown(h["F_ProdNo"]), shown(h["F_ItemNo"]), shown(h["F_PlanPurQty"])});
    say("   headers with a planned purchase (products bought directly):");
    table(toBuy);

    Json lines = call("mrpi", "QueryByIDForPur",
                      Json{{"dblStart", first}, {"dblEnd", last}, {"intCnt", 1}, {"strItemNo", ""}}, 1,
                      shown(first) + ", " + shown(last) + ", 1, \"\"");
    Table requested({"production number", "material", "requested"});
    for (const Json& l : lines["args"]["colPMrpi"])
      requested.row({shown(l["F_ProdNo"]), shown(l["F_ItemNo"]), shown(l["F_RequestQty"])});
    say("   lines with a requested quantity:");
    table(requested);

    // Purchasing takes two materials of the first order up, and the direct purchase as a whole.
    for (const char* material : {"RM-2001", "RM-2002"}) {
      // UpdatePMrpiStatus never reports success: 0 whether or not the status was written.
      call("mrpi", "UpdatePMrpiStatus",
           Json{{"Entity", {{"F_ProdNo", first}, {"F_ItemNo", material}, {"F_Status", 2}}}}, 0,
           shown(first) + " " + material + ", F_Status 2");
    }
    Json taken = call("mrpi", "QueryPMrpiStatus", Json{{"ProdNo", first}}, 1, shown(first));
    std::string takenList;
    for (const Json& l : taken["args"]["objColl"])
      takenList +=
          (takenList.empty() ? "" : ", ") + shown(l["F_ItemNo"]) + " (status " + shown(l["F_Status"]) + ")";
    say("     lines of " + shown(first) + " taken up: " + takenList);
    call("mrpi", "UpdatePMrphStatus", Json{{"Entity", {{"F_ProdNo", lines_[1].prodNo}, {"F_Status", 3}}}}, 1,
         shown(lines_[1].prodNo) + ", F_Status 3");
    Json all = call("mrpi", "QueryAllNullRecord", Json::object(), 1, "");
    std::string numbers;
    for (const Json& h : all["args"]["objColl"])
      numbers += (numbers.empty() ? "" : ", ") + shown(h["F_ProdNo"]);
    say("     production orders with a header or a line taken up, newest first: " + numbers);
  }

  void release() {
    const Line& l = lines_[kReleased];
    heading(6, "Releasing the planning of " + shown(l.prodNo));
    say("   before:");
    reservations(l.prodNo, l.prodNo);
    call("mrpi", "DeleteAllPMrpiRecord", Json{{"ProdNo", l.prodNo}}, 1, shown(l.prodNo));
    Json left = rows("select count(*) from t_pmrpi where F_ProdNo=" + shown(l.prodNo));
    say("     planning lines of " + shown(l.prodNo) + " left: " + shown(left[0][0]));
    say("   after: the lines' reservations are deleted, the uncommitted stock is not given back, and the");
    say("   reservation of the product itself, which is no line, stays:");
    reservations(l.prodNo, l.prodNo);
  }

  ScriptRunner& runner_;
  std::ostream& out_;
  DemoOptions options_;
  std::vector<std::pair<std::string, std::string>> classes_;
  std::vector<Line> lines_;
};

}  // namespace

int runDemo(ScriptRunner& runner, std::ostream& out, std::ostream& err, const DemoOptions& options) {
  try {
    Demo(runner, out, options).run();
    return 0;
  } catch (const DemoFailure& e) {
    out.flush();
    err << "tovrand demo: stopped: " << e.what() << '\n';
    return 1;
  } catch (const std::exception& e) {
    out.flush();
    err << "tovrand demo: stopped: " << e.what() << '\n';
    return 1;
  }
}

}  // namespace tovrand::cli
