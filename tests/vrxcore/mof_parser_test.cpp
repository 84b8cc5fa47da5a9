#include "vrxcore/mof_parser.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#ifndef VRX_MOF_FIXTURES
#error "VRX_MOF_FIXTURES must name the folder tests/vrxcore/mof"
#endif

namespace NZARVEK20::mof {
namespace {

const std::string kFixtures = VRX_MOF_FIXTURES;

std::string errorOf(const std::string& text) {
  try {
    parseMof(text, "t.mof");
  } catch (const ParseError& e) {
    return e.what();
  }
  return "no error";
}

std::string fileErrorOf(const std::string& path) {
  try {
    parseMofFile(path);
  } catch (const ParseError& e) {
    return e.what();
  }
  return "no error";
}

TEST(MofParser, ReadsRealisticSchema) {
  const Document doc = parseMofFile(kFixtures + "/realistic.mof");
  ASSERT_EQ(doc.pragmas.size(), 2u);
  EXPECT_EQ(doc.pragmas[1].name, "namespace");
  EXPECT_EQ(doc.pragmas[1].value, "root/cimv2");

  ASSERT_EQ(doc.qualifierDecls.size(), 3u);
  const QualifierDecl& key = doc.qualifierDecls[0];
  EXPECT_EQ(key.type, "boolean");
  EXPECT_EQ(key.defaultValue.elements.at(0).text, "false");
  EXPECT_EQ(key.scopes, (std::vector<std::string>{"property", "reference"}));
  EXPECT_EQ(key.flavors, (std::vector<std::string>{"DisableOverride", "ToSubclass"}));
  EXPECT_EQ(doc.qualifierDecls[1].defaultValue.elements.at(0).kind, Literal::Kind::Null);
  EXPECT_TRUE(doc.qualifierDecls[2].isArray);
  EXPECT_FALSE(doc.qualifierDecls[2].hasDefault);

  ASSERT_EQ(doc.classes.size(), 3u);
  const ClassDecl& base = doc.classes[0];
  ASSERT_EQ(base.qualifiers.size(), 2u);
  EXPECT_FALSE(base.qualifiers[0].hasValue);
  EXPECT_EQ(base.qualifiers[1].value.elements.at(0).text, "A managed element. Second sentence.");
  const Qualifier& maxLen = base.properties.at(0).qualifiers.at(1);
  EXPECT_EQ(maxLen.value.elements.at(0).text, "256");
  EXPECT_EQ(maxLen.flavors, (std::vector<std::string>{"DisableOverride", "ToSubclass"}));

  const ClassDecl& product = doc.classes[1];
  EXPECT_EQ(product.superClass, "VRX_ManagedElement");
  EXPECT_EQ(product.where.line, 18u);
  EXPECT_EQ(product.where.column, 7u);
  std::vector<std::string> names;
  for (const PropertyDecl& p : product.properties) names.push_back(p.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Status", "InstallDate", "Languages", "Checksum",
                                             "Ratio", "Enabled", "Drive"}));
  const auto& props = product.properties;
  EXPECT_TRUE(props[0].qualifiers.at(1).value.isArray);
  EXPECT_EQ(props[0].qualifiers.at(1).value.elements.at(2).text, "DMTF Reserved");
  EXPECT_EQ(props[0].defaultValue.elements.at(0).text, "31");
  EXPECT_EQ(props[1].type, "datetime");
  EXPECT_FALSE(props[1].hasDefault);
  EXPECT_TRUE(props[2].isArray);
  EXPECT_EQ(props[2].arraySize, -1);
  EXPECT_EQ(props[2].defaultValue.elements.size(), 2u);
  EXPECT_EQ(props[3].arraySize, 4);
  EXPECT_EQ(props[4].defaultValue.elements.at(0).kind, Literal::Kind::Real);
  EXPECT_EQ(props[4].defaultValue.elements.at(0).text, "-1.5e+3");
  EXPECT_EQ(props[5].defaultValue.elements.at(0).text, "true");
  EXPECT_EQ(props[6].defaultValue.elements.at(0).kind, Literal::Kind::Char);
  EXPECT_EQ(props[6].where.line, 30u);

  const auto& refs = doc.classes[2].properties;
  EXPECT_EQ(refs.at(0).type, "ref");
  EXPECT_EQ(refs.at(0).refClass, "VRX_Product");
  EXPECT_EQ(refs.at(1).refClass, "vrx_File");

  ASSERT_EQ(doc.instances.size(), 2u);
  const InstanceDecl& editor = doc.instances[0];
  EXPECT_EQ(editor.alias, "Editor");
  EXPECT_EQ(editor.where.line, 40u);
  ASSERT_EQ(editor.properties.size(), 3u);
  EXPECT_TRUE(editor.properties[1].second.isArray);
  EXPECT_TRUE(editor.properties[1].second.elements.empty());
  EXPECT_EQ(editor.properties[2].second.elements.at(0).text, ".25");
  EXPECT_EQ(doc.instances[1].properties.at(0).second.alias, "Editor");
  EXPECT_EQ(doc.instances[1].properties.at(1).second.elements.at(0).kind, Literal::Kind::Null);
}

TEST(MofParser, DecodesNumbersStringsAndKeywords) {
  struct Case {
    const char* source;
    Literal::Kind kind;
    const char* text;
  };
  using K = Literal::Kind;
  const Case cases[] = {
      {"0", K::Integer, "0"},
      {"-0", K::Integer, "0"},
      {"+42", K::Integer, "42"},
      {"017", K::Integer, "15"},
      {"0x1F", K::Integer, "31"},
      {"0XfF", K::Integer, "255"},
      {"101b", K::Integer, "5"},
      {"-101B", K::Integer, "-5"},
      {"18446744073709551615", K::Integer, "18446744073709551615"},
      {"0xFFFFFFFFFFFFFFFF", K::Integer, "18446744073709551615"},
      {"-9223372036854775808", K::Integer, "-9223372036854775808"},
      {"-.5E-3", K::Real, "-.5E-3"},
      {"1.0", K::Real, "1.0"},
      {R"("a\tb\\c\"d")", K::String, "a\tb\\c\"d"},
      {R"("x" /* between */ "y" "")", K::String, "xy"},
      {R"("\x41\xe9\X20AC")", K::String, "A\xC3\xA9\xE2\x82\xAC"},
      {R"('\'')", K::Char, "'"},
      {R"('\x263A')", K::Char, "\xE2\x98\xBA"},
      {"'\xC3\xA9'", K::Char, "\xC3\xA9"},
      {"TRUE", K::Boolean, "true"},
      {"False", K::Boolean, "false"},
      {"nULL", K::Null, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.source);
    const Document doc = parseMof(std::string("instance of A { P = ") + c.source + "; };", "t.mof");
    const Literal& lit = doc.instances.at(0).properties.at(0).second.elements.at(0);
    EXPECT_EQ(lit.kind, c.kind);
    EXPECT_EQ(lit.text, c.text);
    EXPECT_EQ(lit.where.column, 21u);
  }
}

TEST(MofParser, ReportsBadInputWithExactPlace) {
  const std::pair<std::string, std::string> cases[] = {
      {"class A {\n  string Name\n};",
       "t.mof:3:1: expected ';' after property declaration, found '}'"},
      {"class A {\n string Name;\n\tstring NAME;\n};",
       "t.mof:3:9: duplicate property 'NAME' in class 'A'"},
      {"class A {};\n  /* open", "t.mof:2:3: unterminated comment"},
      {std::string("class A\0{};", 11), "t.mof:1:8: unexpected NUL byte"},
      {"class A { string @x; };", "t.mof:1:18: unexpected character '@'"},
      {"class \xFF", "t.mof:1:7: unexpected byte 0xFF"},
      {"class A { strng Name; };", "t.mof:1:11: expected a CIM type, found 'strng'"},
      {"class A { uint8 B[0]; };", "t.mof:1:19: expected a positive array size, found '0'"},
      {"class A {\n string X;\n", "t.mof:3:1: expected type name, found end of file"},
      {"class A { uint32 M(string a b); };",
       "t.mof:1:29: expected ',' or ')' in parameter list, found 'b'"},
      {"foo", "t.mof:1:1: expected 'class', 'instance', 'qualifier' or '#pragma', found 'foo'"},
      {"[Key] instance of A {};",
       "t.mof:1:7: expected 'class' after qualifier list, found 'instance'"},
      {"[Key : Sticky] class A {};", "t.mof:1:8: expected flavor name, found 'Sticky'"},
      {"Qualifier Key : boolean;", "t.mof:1:24: expected ',' before 'Scope', found ';'"},
      {"#pragma locale (en)", "t.mof:1:17: expected string value of pragma, found 'en'"},
      {"instance of A as B {};", "t.mof:1:18: expected alias ('$name') after 'as', found 'B'"},
      {"instance of A { P = 18446744073709551616; };",
       "t.mof:1:21: integer '18446744073709551616' does not fit in 64 bits"},
      {"instance of A { P = -9223372036854775809; };",
       "t.mof:1:21: integer '-9223372036854775809' does not fit in 64 bits"},
      {"instance of A { P = 09; };", "t.mof:1:21: invalid number '09'"},
      {"instance of A { P = 1.5.2; };", "t.mof:1:21: invalid number '1.5.2'"},
      {"instance of A {\n P = \"abc\n\"; };", "t.mof:2:6: unterminated string"},
      {"instance of A { P = \"a\\q\"; };", "t.mof:1:23: invalid escape '\\q'"},
      {"instance of A { P = \"\\x0\"; };", "t.mof:1:22: escape '\\x0' is not a valid character"},
      {"instance of A { P = ''; };",
       "t.mof:1:21: character literal must hold exactly one character"},
      {"instance of A { P = {1 2}; };",
       "t.mof:1:24: expected ',' or '}' in array value, found '2'"},
      {"instance of A { P = 1; p = 2; };", "t.mof:1:24: duplicate property 'p' in instance of 'A'"},
      // Nesting is not recursive, so a deep pile of braces is one plain error.
      {"instance of A { P = {" + std::string(100000, '{'),
       "t.mof:1:22: expected a value, found '{'"},
  };
  for (const auto& [source, expected] : cases) {
    EXPECT_EQ(errorOf(source), expected) << source.substr(0, 60);
  }
}

TEST(MofParser, MergesIncludesInPlaceAndRefusesBadOnes) {
  const Document doc = parseMofFile(kFixtures + "/include_main.mof");
  ASSERT_EQ(doc.classes.size(), 2u);
  EXPECT_EQ(doc.classes[0].name, "Base");
  EXPECT_EQ(doc.classes[0].where.file, kFixtures + "/include_part.mof");
  EXPECT_EQ(doc.classes[1].name, "After");
  ASSERT_EQ(doc.pragmas.size(), 1u);
  EXPECT_EQ(doc.pragmas[0].name, "locale");

  EXPECT_EQ(parseMof("#pragma include (\"x.mof\")", "t.mof").pragmas.at(0).value, "x.mof");
  EXPECT_EQ(fileErrorOf(kFixtures + "/nope.mof"),
            kFixtures + "/nope.mof:0:0: cannot open: No such file or directory");
  EXPECT_EQ(fileErrorOf(kFixtures + "/bad_include.mof"),
            kFixtures + "/bad_include.mof:2:1: cannot open included file '" + kFixtures +
                "/missing.mof': No such file or directory");
  EXPECT_EQ(fileErrorOf(kFixtures + "/cycle_a.mof"),
            kFixtures + "/cycle_b.mof:2:1: include cycle: '" + kFixtures +
                "/cycle_a.mof' is already being read");
}

TEST(MofParser, LimitsIncludeDepthToSixteen) {
  const auto dir =
      std::filesystem::temp_directory_path() / ("mof_depth_" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  auto write = [&](int index, const std::string& text) {
    std::ofstream(dir / ("d" + std::to_string(index) + ".mof")) << text;
  };
  for (int i = 0; i < 16; ++i)
    write(i, "#pragma include (\"d" + std::to_string(i + 1) + ".mof\")\n");
  write(16, "class Deepest { };\n");
  const std::string top = (dir / "d0.mof").string();
  EXPECT_EQ(parseMofFile(top).classes.at(0).name, "Deepest");

  write(16, "#pragma include (\"d17.mof\")\n");
  write(17, "class TooDeep { };\n");
  EXPECT_EQ(fileErrorOf(top), (dir / "d16.mof").string() + ":1:1: includes nested deeper than 16");
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace NZARVEK20::mof
