import unittest

from structure import Structure
from tokens import matching, tokens_of


def structure_of(source):
    tokens = tokens_of(source)
    return tokens, Structure(tokens, matching(tokens))


def statements(body):
    tokens, structure = structure_of(f"void f() {{ {body} }}")
    return [(each.kind, each.name, " ".join(token.text for token in tokens[each.first:each.last + 1]))
            for each in structure.statements()]


class Code(unittest.TestCase):
    def is_code(self, source, word):
        tokens, structure = structure_of(source)
        return structure.is_code[[token.text for token in tokens].index(word)]

    def test_bodies_of_functions_are_code(self):
        self.assertTrue(self.is_code("namespace n { int f(int a) const { return x; } }", "x"))
        self.assertTrue(self.is_code("class C { C() : m(1) { x(); } };", "x"))
        self.assertTrue(self.is_code("void f() { if (a) { for (;;) { x(); } } }", "x"))

    def test_declarations_and_values_are_none(self):
        self.assertFalse(self.is_code("namespace n { struct S { int x = 1; }; }", "x"))
        self.assertFalse(self.is_code("const int table[] = {1, x};", "x"))
        self.assertFalse(self.is_code("enum class E { x };", "x"))

    def test_what_follows_a_function_is_none(self):
        self.assertFalse(self.is_code("void f() { a(); } int x = 1;", "x"))


class Touched(unittest.TestCase):
    def untouched(self, source):
        tokens, structure = structure_of(source)
        return [token.text for index, token in enumerate(tokens) if not structure.is_touched[index]]

    def test_what_the_compiler_judges_is_not_touched(self):
        self.assertEqual("static_assert ( sizeof ( int ) == 4 )".split(), self.untouched("static_assert(sizeof(int) == 4); int a;"))

    def test_attributes_are_not_touched(self):
        self.assertEqual("[ [ nodiscard ] ]".split(), self.untouched("[[nodiscard]] int f();"))

    def test_aliases_and_parameters_of_templates_are_not_touched(self):
        self.assertEqual("using A = B < 1 > ;".split(), self.untouched("using A = B<1>; int a = 2;"))
        self.assertEqual("template < class T , int n = 3 >".split(), self.untouched("template<class T, int n = 3> int f(T a = 4);"))

    def test_names_of_operators_are_not_touched(self):
        self.assertEqual(["operator", "=="], self.untouched("bool operator==(int);"))


class Statements(unittest.TestCase):
    def test_calls_have_the_name_of_what_is_called_last(self):
        self.assertEqual([("call", "close", "a . b ( 1 ) -> close ( ) ;"), ("call", "g", "n :: g ( { 2 } ) ;")],
                         statements("a.b(1)->close(); n::g({2});"))

    def test_assignments_and_deletions_are_found(self):
        self.assertEqual([("assignment", "m", "m = f ( a ) + 1 ;"), ("assignment", "", "t [ 0 ] . x += 2 ;"),
                          ("delete", "delete", "delete p ;")],
                         [(kind, name if name == "m" or kind == "delete" else "", text)
                          for kind, name, text in statements("m = f(a) + 1; t[0].x += 2; delete p;")])

    def test_what_is_after_a_condition_is_found(self):
        self.assertEqual(["a ( ) ;", "b ( ) ;", "c ( ) ;", "d ( ) ;"],
                         [text for _, _, text in statements("if (x) a(); else b(); for (;;) c(); while (x) { d(); }")])

    def test_declarations_and_jumps_are_none(self):
        self.assertEqual([], statements("int a = 1; const T b(2); auto c = f(); return g(); throw E(); T d{3}; break; using n::h;"))

    def test_a_lambda_belongs_to_its_call(self):
        self.assertEqual(["h ( [ ] { k ( ) ; } ) ;", "k ( ) ;"], [text for _, _, text in statements("h([] { k(); });")])

    def test_declarations_outside_of_functions_are_none(self):
        self.assertEqual([], structure_of("class C { C(); ~C(); void f(); }; int a = g();")[1].statements())
