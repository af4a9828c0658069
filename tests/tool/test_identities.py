from support import ARRAY, NO_IDENTITY, int_record, record, reference, string_record, struct_record
from test_losses import Losses

GUID = "3F2504E0-4F89-11D3-9A0C-0305E82C330"  # lacks one digit
ANOTHER = "a value with the identity of another"


class SharedIdentities(Losses):
    """Binary knows one value for each identity. A second value never silently becomes the first."""

    def becomes(self, plain):
        """Expects this content from the refused file when it is converted with --force."""
        self.forced(self.source, "kelb")
        self.ok("convert", "out.kelb", "back.json")
        self.assertEqual(self.json("back.json"), plain)

    def refused_text(self, text, *places):
        self.source = "a.kel"
        self.refused(self.source, text, "kelb", *places)

    def refused_binary(self, content, *places):
        self.source = "a.kelb"
        self.refused(self.source, content, "kelb", *places)

    def test_a_second_value_of_an_identity_gets_one_of_its_own(self):
        self.refused_text(f"[ {GUID}1 = 1\n {GUID}1 = 2\n ]", f"[1]: {ANOTHER}")
        self.becomes([1, 2])

    def test_roots_share_their_identities(self):
        self.refused_text(f'{GUID}1 = [ 1 ]\n{GUID}1 = {{ a = 2 }}\n{GUID}1 = "x"',
                          f"2:(the value itself): {ANOTHER}",
                          f"3:(the value itself): {ANOTHER}")
        self.forced("a.kel", "kelb")
        self.assertEqual(self.ok("show", "out.kelb").out, b'[\n\t1\n]\n{\n\ta = 2\n}\n"x"\n')

    def test_managers_that_go_leave_values_of_one_identity(self):
        self.refused_text(f"{{ a = ( {GUID}1 = 1 ) b = ( {GUID}1 = 2 ) }}",
                          "a: a manager", "b: a manager", f"b#{GUID}1: {ANOTHER}")
        self.becomes({"a": [1], "b": [2]})

    def test_what_goes_anyway_is_listed_once(self):
        self.refused_text(f"[ {GUID}1 = 1\n {GUID}1 = ( )\n {GUID}1 = {GUID}2\n ]",
                          "[1]: a manager", "[2]: a guid")
        self.becomes([1, [], GUID + "2"])

    def test_binary_records_of_one_identity_stay_apart(self):
        self.refused_binary(record(ARRAY, int_record(1, 2) + int_record(2, 2), 3),
                            f"[1]: {ANOTHER}")
        self.becomes([1, 2])

    def test_a_value_inside_one_of_its_identity_is_no_reference_to_it(self):
        self.refused_binary(record(ARRAY, string_record(b"x", 2), 2), f"[0]: {ANOTHER}")
        self.becomes(["x"])

    def test_containers_keep_what_they_hold_and_share(self):
        no_value = b"KEL\0" + NO_IDENTITY + reference(1)[20:]
        inner = struct_record([(b"a", reference(4)), (b"b", int_record(5, 5)), (b"c", no_value)], 2)
        self.refused_binary(record(ARRAY, string_record(b"s", 4) + string_record(b"t", 2) + inner,
                                   3), f"[2]: {ANOTHER}")
        self.becomes(["s", "t", {"a": "s", "b": 5, "c": None}])
        self.assertEqual(self.read("out.kelb").count(string_record(b"s", 4)), 1)

    def test_a_value_in_several_places_stays_one(self):
        self.refused_binary(record(ARRAY, int_record(1, 2) +
                                   record(ARRAY, int_record(7, 5), 2) + reference(2), 3),
                            f"[1]: {ANOTHER}")
        self.becomes([1, [7], [7]])
        self.assertEqual(self.read("out.kelb").count(int_record(7, 5)), 1)

    def test_a_value_that_contains_itself_stays_such_a_value(self):
        self.refused_binary(record(ARRAY, int_record(1, 2) +
                                   record(ARRAY, int_record(3, 5) + reference(2), 2), 3),
                            f"[1]: {ANOTHER}")
        self.forced("a.kelb", "kelb")
        self.assertEqual(self.kel("convert", "--force", "out.kelb", "back.json").err,
                         "kel: warning: out.kelb: 1 place cannot be converted from binary to json:\n"
                         "  [1][1]: a value that contains itself\n")
        self.assertEqual(self.json("back.json"), [1, [3]])

    def test_the_zero_identity_is_none(self):
        unnamed = int_record(7)[:4] + NO_IDENTITY + int_record(7)[20:]
        self.write("a.kelb", record(ARRAY, unnamed + unnamed, 3))
        self.ok("convert", "a.kelb", "b.kelb")
        self.assertEqual(self.read("b.kelb"), self.read("a.kelb"))

    def test_one_value_in_several_places_is_no_loss(self):
        self.write("a.kel", f"[ {GUID}1 = [ 1 ] REF {GUID}1\n ]\nREF {GUID}1")
        self.ok("convert", "a.kel", "b.kelb")

    def test_text_and_json_do_not_mind(self):
        self.write("a.kel", f"[ {GUID}1 = 1\n {GUID}1 = 2\n ]")
        self.ok("convert", "a.kel", "b.kel")
        self.ok("convert", "a.kel", "b.json")
