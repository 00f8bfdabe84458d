// The type library sources of the COM servers against the tables the dispatch works from:
// com/Tovrand.idl against the member table, com/velmora/Velmora.idl against the entity classes.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "component/Component.h"
#include "entities/Entities.h"
#include "frame/Members.h"

using namespace tovrand;

namespace {

std::string readFile(const std::string& path) {
  std::ifstream in(path);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// The IDL text without comments.
std::string withoutComments(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "//") == 0) {
      while (i < text.size() && text[i] != '\n') ++i;
      out += '\n';
    } else if (text.compare(i, 2, "/*") == 0) {
      std::size_t end = text.find("*/", i + 2);
      i = end == std::string::npos ? text.size() : end + 1;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string trim(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  return std::string(s);
}

std::string upper(std::string s) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

// Splits at commas outside brackets and parentheses.
std::vector<std::string> splitTopLevel(std::string_view s) {
  std::vector<std::string> parts;
  int depth = 0;
  std::string current;
  for (char c : s) {
    if (c == '[' || c == '(') ++depth;
    if (c == ']' || c == ')') --depth;
    if (c == ',' && depth == 0) {
      parts.push_back(trim(current));
      current.clear();
    } else {
      current += c;
    }
  }
  if (!trim(current).empty()) parts.push_back(trim(current));
  return parts;
}

// The value of attr(...) in an attribute list, or "" when it is not there.
std::string attribute(const std::vector<std::string>& attrs, std::string_view name) {
  for (const std::string& a : attrs) {
    if (a.rfind(name, 0) == 0 && a.size() > name.size() && a[name.size()] == '(')
      return trim(std::string_view(a).substr(name.size() + 1, a.size() - name.size() - 2));
    if (a == name) return a;
  }
  return {};
}

struct Param {
  std::vector<std::string> attrs;
  std::string type;
  std::string name;
};

struct Method {
  std::vector<std::string> attrs;
  std::string name;
  std::vector<Param> params;
};

struct Block {  // an interface or a coclass with its attributes
  std::string kind;
  std::string name;
  std::string base;
  std::vector<std::string> attrs;
  std::string body;
  std::vector<Method> methods;
};

struct Idl {
  std::vector<std::string> libraryAttrs;
  std::string libraryName;
  std::vector<Block> blocks;
};

std::size_t matching(const std::string& text, std::size_t open, char o, char c) {
  int depth = 0;
  for (std::size_t i = open; i < text.size(); ++i) {
    if (text[i] == o) ++depth;
    if (text[i] == c && --depth == 0) return i;
  }
  return std::string::npos;
}

std::vector<Method> parseMethods(const std::string& body) {
  std::vector<Method> methods;
  std::size_t i = 0;
  while ((i = body.find('[', i)) != std::string::npos) {
    std::size_t close = matching(body, i, '[', ']');
    std::vector<std::string> attrs = splitTopLevel(std::string_view(body).substr(i + 1, close - i - 1));
    std::size_t h = body.find("HRESULT", close);
    std::size_t open = body.find('(', h);
    std::size_t end = matching(body, open, '(', ')');
    Method m;
    m.attrs = attrs;
    m.name = trim(std::string_view(body).substr(h + 7, open - h - 7));
    for (const std::string& p : splitTopLevel(std::string_view(body).substr(open + 1, end - open - 1))) {
      Param param;
      std::string rest = p;
      if (!rest.empty() && rest.front() == '[') {
        std::size_t pc = matching(rest, 0, '[', ']');
        param.attrs = splitTopLevel(std::string_view(rest).substr(1, pc - 1));
        rest = trim(std::string_view(rest).substr(pc + 1));
      }
      std::size_t cut = rest.find_last_of(" *");
      param.name = trim(std::string_view(rest).substr(cut + 1));
      param.type = trim(std::string_view(rest).substr(0, cut + 1));
      param.type.erase(std::remove(param.type.begin(), param.type.end(), ' '), param.type.end());
      m.params.push_back(param);
    }
    methods.push_back(m);
    i = body.find(';', end) + 1;
  }
  return methods;
}

Idl parse(const std::string& path) {
  std::string text = withoutComments(readFile(path));
  Idl idl;
  std::size_t lib = text.find("library ");
  if (lib == std::string::npos) return idl;
  std::size_t attrOpen = text.rfind('[', lib);
  idl.libraryAttrs = splitTopLevel(
      std::string_view(text).substr(attrOpen + 1, matching(text, attrOpen, '[', ']') - attrOpen - 1));
  std::size_t brace = text.find('{', lib);
  idl.libraryName = trim(std::string_view(text).substr(lib + 8, brace - lib - 8));
  std::size_t i = brace + 1;
  while ((i = text.find('[', i)) != std::string::npos) {
    std::size_t close = matching(text, i, '[', ']');
    Block b;
    b.attrs = splitTopLevel(std::string_view(text).substr(i + 1, close - i - 1));
    std::size_t open = text.find('{', close);
    if (open == std::string::npos) break;
    std::string head = trim(std::string_view(text).substr(close + 1, open - close - 1));
    std::size_t space = head.find(' ');
    b.kind = head.substr(0, space);
    std::string rest = trim(std::string_view(head).substr(space + 1));
    std::size_t colon = rest.find(':');
    b.name = trim(std::string_view(rest).substr(0, colon));
    if (colon != std::string::npos) b.base = trim(std::string_view(rest).substr(colon + 1));
    std::size_t end = matching(text, open, '{', '}');
    b.body = text.substr(open + 1, end - open - 1);
    if (b.kind == "interface") b.methods = parseMethods(b.body);
    idl.blocks.push_back(b);
    i = end + 1;
  }
  return idl;
}

std::string bare(std::string_view guid) {
  return upper(std::string(guid.substr(1, guid.size() - 2)));
}

const Block* findBlock(const Idl& idl, std::string_view kind, std::string_view name) {
  for (const Block& b : idl.blocks)
    if (b.kind == kind && b.name == name) return &b;
  return nullptr;
}

bool has(const std::vector<std::string>& attrs, std::string_view a) {
  for (const std::string& x : attrs)
    if (x == a) return true;
  return false;
}

std::string idlType(const ParamInfo& p) {
  switch (p.kind) {
    case ParamKind::Entity:
    case ParamKind::Collection:
      return p.byRef ? "IDispatch**" : "IDispatch*";
    case ParamKind::Double:
      return p.byRef ? "double*" : "double";
    case ParamKind::String:
      return p.byRef ? "BSTR*" : "BSTR";
    case ParamKind::Integer:
      return p.byRef ? "short*" : "short";
    case ParamKind::Date:
      return p.byRef ? "DATE*" : "DATE";
    case ParamKind::DoubleArray:
      return "SAFEARRAY(double)*";
  }
  return {};
}

long dispidOf(const Method& m) {
  return std::stol(attribute(m.attrs, "id"), nullptr, 0);
}

class TovrandIdl : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { idl_ = parse(std::string(TOVRAND_SOURCE_DIR) + "/com/Tovrand.idl"); }
  static Idl idl_;
};
Idl TovrandIdl::idl_;

TEST_F(TovrandIdl, LibraryHasTheComponentsIdentifierVersion27AndNeutralLocale) {
  EXPECT_EQ(idl_.libraryName, "Tovrand");
  EXPECT_EQ(upper(attribute(idl_.libraryAttrs, "uuid")), bare(kTypeLibraryId));
  EXPECT_EQ(attribute(idl_.libraryAttrs, "version"),
            std::to_string(kTypeLibraryMajor) + "." + std::to_string(kTypeLibraryMinor));
  EXPECT_EQ(attribute(idl_.libraryAttrs, "lcid"), "0");
}

TEST_F(TovrandIdl, DeclaresExactlyTheFourDualInterfacesInTableOrder) {
  std::vector<std::string> names;
  for (const Block& b : idl_.blocks)
    if (b.kind == "interface") names.push_back(b.name);
  std::vector<std::string> expected;
  for (const ClassInfo& c : componentClasses()) expected.emplace_back(c.interfaceName);
  EXPECT_EQ(names, expected);
  for (const ClassInfo& c : componentClasses()) {
    const Block* b = findBlock(idl_, "interface", c.interfaceName);
    ASSERT_NE(b, nullptr) << c.interfaceName;
    EXPECT_EQ(upper(attribute(b->attrs, "uuid")), bare(c.iid)) << c.interfaceName;
    EXPECT_TRUE(has(b->attrs, "dual")) << c.interfaceName;
    EXPECT_TRUE(has(b->attrs, "oleautomation")) << c.interfaceName;
    EXPECT_EQ(b->base, "IDispatch") << c.interfaceName;
  }
}

TEST_F(TovrandIdl, EveryMemberHasTheTablesNameOrderAndDispid) {
  for (const ClassInfo& c : componentClasses()) {
    const Block* b = findBlock(idl_, "interface", c.interfaceName);
    ASSERT_NE(b, nullptr);
    ASSERT_EQ(b->methods.size(), c.members.size()) << c.interfaceName;
    for (std::size_t i = 0; i < c.members.size(); ++i) {
      EXPECT_EQ(b->methods[i].name, c.members[i].name) << c.interfaceName << " member " << i;
      EXPECT_EQ(dispidOf(b->methods[i]), c.members[i].dispid) << c.interfaceName << "." << c.members[i].name;
    }
  }
}

TEST_F(TovrandIdl, DispidsRunFrom0x60030002AndSkip0x6003000FInThePlanningInterfaces) {
  for (const ClassInfo& c : componentClasses()) {
    const Block* b = findBlock(idl_, "interface", c.interfaceName);
    ASSERT_NE(b, nullptr);
    long expected = 0x60030002;
    for (const Method& m : b->methods) {
      if (expected == 0x6003000F && (c.name == "clsDataPMrph" || c.name == "clsDataPMrpi")) ++expected;
      EXPECT_EQ(dispidOf(m), expected) << c.interfaceName << "." << m.name;
      ++expected;
    }
  }
}

TEST_F(TovrandIdl, ParametersHaveTheTablesNamesKindsAndPassingThenTheResult) {
  for (const ClassInfo& c : componentClasses()) {
    const Block* b = findBlock(idl_, "interface", c.interfaceName);
    ASSERT_NE(b, nullptr);
    for (std::size_t i = 0; i < c.members.size() && i < b->methods.size(); ++i) {
      const MemberInfo& m = c.members[i];
      const Method& idl = b->methods[i];
      std::string where = std::string(c.interfaceName) + "." + std::string(m.name);
      ASSERT_EQ(idl.params.size(), m.params.size() + 1) << where;
      for (std::size_t k = 0; k < m.params.size(); ++k) {
        const ParamInfo& p = m.params[k];
        EXPECT_EQ(idl.params[k].name, p.name) << where;
        EXPECT_EQ(idl.params[k].type, idlType(p)) << where << " " << p.name;
        EXPECT_TRUE(has(idl.params[k].attrs, "in")) << where << " " << p.name;
        EXPECT_EQ(has(idl.params[k].attrs, "out"), p.byRef) << where << " " << p.name;
      }
      const Param& result = idl.params.back();
      EXPECT_TRUE(has(result.attrs, "out") && has(result.attrs, "retval")) << where;
      EXPECT_EQ(result.type, m.returns == ReturnKind::Variant ? "VARIANT*" : "short*") << where;
    }
  }
}

TEST_F(TovrandIdl, CoclassesCarryTheClsidsAndTheirDefaultInterface) {
  std::size_t count = 0;
  for (const Block& b : idl_.blocks) count += b.kind == "coclass";
  EXPECT_EQ(count, componentClasses().size());
  for (const ClassInfo& c : componentClasses()) {
    const Block* b = findBlock(idl_, "coclass", c.name);
    ASSERT_NE(b, nullptr) << c.name;
    EXPECT_EQ(upper(attribute(b->attrs, "uuid")), bare(c.clsid)) << c.name;
    EXPECT_FALSE(has(b->attrs, "noncreatable")) << c.name;
    EXPECT_NE(b->body.find("[default] interface " + std::string(c.interfaceName) + ";"), std::string::npos)
        << c.name;
  }
}

TEST(VelmoraIdl, EntityInterfacesHaveTheirIidsAndEveryPropertyAsPutThenGetInMemberOrder) {
  Idl idl = parse(std::string(TOVRAND_SOURCE_DIR) + "/com/velmora/Velmora.idl");
  EXPECT_EQ(idl.libraryName, "Velmora");
  for (const EntityClass* cls : entityClasses()) {
    std::string name = "_" + std::string(cls->name);
    const Block* b = findBlock(idl, "interface", name);
    ASSERT_NE(b, nullptr) << name;
    EXPECT_EQ(upper(attribute(b->attrs, "uuid")), bare(cls->iid)) << name;
    EXPECT_TRUE(has(b->attrs, "dual")) << name;
    ASSERT_EQ(b->methods.size(), cls->properties.size() * 2) << name;
    for (std::size_t i = 0; i < cls->properties.size(); ++i) {
      const Method& put = b->methods[2 * i];
      const Method& get = b->methods[2 * i + 1];
      EXPECT_EQ(put.name, cls->properties[i].name) << name;
      EXPECT_EQ(get.name, cls->properties[i].name) << name;
      EXPECT_TRUE(has(put.attrs, "propput")) << name << "." << put.name;
      EXPECT_TRUE(has(get.attrs, "propget")) << name << "." << get.name;
      EXPECT_EQ(dispidOf(put), dispidOf(get)) << name << "." << put.name;
      const char* type = "";
      switch (cls->properties[i].type) {
        case PropertyType::Double:
          type = "double";
          break;
        case PropertyType::String:
          type = "BSTR";
          break;
        case PropertyType::Integer:
          type = "short";
          break;
        case PropertyType::Date:
          type = "DATE";
          break;
      }
      ASSERT_EQ(put.params.size(), 1u);
      ASSERT_EQ(get.params.size(), 1u);
      EXPECT_EQ(put.params[0].type, type) << name << "." << put.name;
      EXPECT_EQ(get.params[0].type, std::string(type) + "*") << name << "." << get.name;
    }
    const Block* coclass = findBlock(idl, "coclass", cls->name);
    ASSERT_NE(coclass, nullptr) << cls->name;
    EXPECT_NE(coclass->body.find("[default] interface " + name + ";"), std::string::npos) << cls->name;
  }
}

TEST(VelmoraIdl, ConnectionHolderKeepsTheComponentsInterfaceAndMemberOrder) {
  Idl idl = parse(std::string(TOVRAND_SOURCE_DIR) + "/com/velmora/Velmora.idl");
  const Block* b = findBlock(idl, "interface", "_clsDbConnection");
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(upper(attribute(b->attrs, "uuid")), "F89D04E3-7133-478D-8BE7-9C93F61E3A71");
  ASSERT_EQ(b->methods.size(), 3u);
  EXPECT_EQ(b->methods[0].name, "Connection");
  EXPECT_TRUE(has(b->methods[0].attrs, "propget"));
  EXPECT_EQ(b->methods[1].name, "OpenConnection");
  EXPECT_EQ(b->methods[2].name, "CloseConnection");
  const Block* coll = findBlock(idl, "interface", "_Collection");
  ASSERT_NE(coll, nullptr);
  bool itemIsDefault = false, enumerates = false;
  for (const Method& m : coll->methods) {
    if (m.name == "Item") itemIsDefault = dispidOf(m) == 0;
    if (m.name == "_NewEnum") enumerates = dispidOf(m) == -4 || dispidOf(m) == 0xFFFFFFFCL;
  }
  EXPECT_TRUE(itemIsDefault);
  EXPECT_TRUE(enumerates);
}

}  // namespace
