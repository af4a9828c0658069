"""kel convert --identities stable: one input always becomes the same bytes."""

import hashlib
import struct

from support import (ARRAY, NO_IDENTITY, REFERENCE, STRUCT, ToolTest, identity, int_record, record,
                     reference, string_record, struct_record)
from test_parts import HEADER, IDENTITY, Text, without_identities

GUID = "3F2504E0-4F89-11D3-9A0C-0305E82C330"  # lacks one digit
GIVEN = bytes.fromhex("E004253F894FD3119A0C0305E82C3301")  # with the digit 1


def digest(*parts):
    whole = b"".join(parts)
    return hashlib.blake2s(whole, digest_size=16, person=b"KEL ids1").digest()


def as_identity(value):
    value = bytearray(value)
    value[7] = value[7] & 0x0F | 0x40
    value[8] = value[8] & 0x3F | 0x80
    return bytes(value)


class Expected:
    """Computes the identities that the records of a file must have, from the file itself."""

    def __init__(self, content, given=()):
        self.content = content
        self.given = set(given)
        self.result = bytearray(content)
        self.known = {}  # by the identities in the file
        self.elements(0, len(content), bytes(16), False)

    def elements(self, at, end, place, are_variables):
        """Returns the digest of what a container holds."""
        contents = bytes(16)
        count = 0
        while at < end:
            if are_variables:
                name_end = self.content.index(b"\0", at)
                mine = digest(b"place", place, b"name", self.content[at:name_end])
                at = name_end + 1
            else:
                mine = digest(b"place", place, b"index", struct.pack("<Q", count))
                count += 1
            at, event, first, second = self.element(at, mine)
            contents = digest(b"holds " + event, contents, first, second)
        return contents

    def element(self, at, place):
        kind, = struct.unpack_from("<i", self.content, at + 20)
        old = self.content[at + 4:at + 20]
        if kind == REFERENCE:
            if old == NO_IDENTITY:
                return at + 24, b"null", place, bytes(16)
            return at + 24, b"reference", place, self.known[old]
        length, = struct.unpack_from("<Q", self.content, at + 26)
        end = at + HEADER + length
        self.known[old] = place
        payload = self.content[at + HEADER:end]
        if kind in (ARRAY, STRUCT):
            payload = self.elements(at + HEADER, end, place, kind == STRUCT)
        stable = as_identity(digest(b"value", place, struct.pack("<i", kind), payload))
        written = stable
        while written in self.given:
            written = as_identity(digest(b"again", written))
        if old in self.given or old == NO_IDENTITY:
            written = old
        self.known[old] = stable
        self.result[at + 4:at + 20] = written
        return end, b"value", stable, written


class Stable(ToolTest):
    def stable(self, name, content, *options):
        """Returns the binary that the input becomes, twice the same and also on stdout."""
        self.write(name, content)
        warns = "--force" in options or (name == "a.kel" and ("#" in content or "//" in content))
        results = []
        for output in ("out1.kelb", "out2.kelb"):
            result = self.kel("convert", "--identities", "stable", *options, name, output)
            self.assertEqual((result.status, result.err.count("\n") > 0), (0, warns))
            results.append(self.read(output))
        form = {"json": "json", "kel": "text", "kelb": "binary"}[name.split(".")[-1]]
        result = self.kel("convert", "--identities", "stable", *options, "--from", form,
                          "--to", "binary", "-", "-", input=content)
        results.append(result.out)
        self.assertEqual(results[1:], [results[0]] * 2)
        return results[0]

    def identities(self, content):
        """Returns the identities of all records that are not inside others' payloads of bytes."""
        zeroed = without_identities(content)
        return [content[at + 4:at + 20] for at in range(len(zeroed))
                if zeroed[at:at + 20] == b"KEL" + bytes(17)]

    def test_identities_are_digests_of_place_and_contents(self):
        content = self.stable("a.json", '{"a": [1, "x", 2.5, true], "b": null, "c": {"d": []}}\n'
                              '[{"$memblock": "AAECAwQF"}]\n"' + "long " * 50 + '"')
        self.assertEqual(content, Expected(content).result)
        self.assertEqual(len(set(self.identities(content))), 12)

    def test_only_the_identities_differ_from_the_usual_output(self):
        text = Text(1).value(3000)
        content = self.stable("a.json", text)
        self.ok("convert", "a.json", "random.kelb")
        self.ok("convert", "--identities", "random", "a.json", "other.kelb")
        usual = self.read("random.kelb")
        self.assertNotEqual(self.read("other.kelb"), usual)
        self.assertNotEqual(content, usual)
        self.assertEqual(without_identities(content), without_identities(usual))

    def test_part_by_part_gives_the_bytes_of_the_whole(self):
        for seed in range(3):
            with self.subTest(seed=seed):
                value = Text(seed).value(15000)
                parts = self.stable("a.json", f'[{value},{{"b":{value},"lost":[7]}}]')
                # A null in an array is lost, so that a document with one is converted as a whole.
                whole = self.stable("b.json", f'[{value},{{"b":{value},"lost":[null,7]}}]',
                                    "--force")
                self.assertEqual(parts, whole)
                self.assertEqual(parts, Expected(parts).result)

    def test_all_inputs_of_the_same_contents_give_the_same(self):
        from_json = self.stable("a.json", '{"b": [1, "x"], "a": {"c": true, "d": 1.5}}')
        from_text = self.stable("a.kel", '{ b = [ 1 "x" ] a = { d = 1.5 c = true } }')
        self.assertEqual(from_json, from_text)

    def test_a_change_reaches_only_the_containers_around_it(self):
        first = self.identities(self.stable("a.json", '{"a": [1, 2], "b": [3, 4]}'))
        second = self.identities(self.stable("a.json", '{"a": [1, 5], "b": [3, 4]}'))
        self.assertEqual([old == new for old, new in zip(first, second)],
                         [False, False, True, False, True, True, True])

    def test_place_name_and_kind_matter(self):
        documents = ['[[]]', '[{}]', '{"a": []}', '{"b": []}', '[1]', '["\\u0001"]', '[true]',
                     '{"a": null}', '{}', '[] []']
        found = [one for document in documents
                 for one in self.identities(self.stable("a.json", document))]
        found = [one for one in found if one != NO_IDENTITY]
        self.assertEqual(len(found), 18)
        self.assertEqual(len(set(found)), 18)

    def test_binary_keeps_its_identities(self):
        unnamed = int_record(7)[:4] + NO_IDENTITY + int_record(7)[20:]
        content = record(ARRAY, int_record(1, 2) + reference(2) + unnamed + reference(3) +
                         record(STRUCT, b"", 5), 3) + reference(5)
        self.assertEqual(self.stable("a.kelb", content), content)

    def test_values_of_one_identity_get_stable_ones_but_for_the_first(self):
        content = record(ARRAY, int_record(1, 2) + record(ARRAY, int_record(3, 5) + reference(2),
                                                          2) + reference(2), 3)
        result = self.stable("a.kelb", content, "--force")
        self.assertEqual(result, Expected(result, [identity(2), identity(3), identity(5)]).result)
        inner = result[HEADER * 2 + 4:]
        self.assertNotEqual(inner[IDENTITY], identity(2))
        self.assertEqual(result.count(inner[:20] + struct.pack("<i", REFERENCE)), 2)

    def test_text_keeps_the_identities_that_it_gives(self):
        for text, kept in ((f"[ 5 {GUID}1 = [ 1 ] ]", 1), (f"[ 5 {GUID.lower()}1 [ 1 ] ]", 1),
                           ("[ 5 3F-2504E04F89--11D39A0C0305E82C3301 = [ 1 ] ]", 1),
                           ("[ 5 3F2504E04F8911D39A0C0305E82C330-1 = [ 1 ] ]", 1),
                           (f"[ 5 {{ @hashCode = {GUID}1\n a = 1 }} ]", 1),
                           (f"#define X {GUID}1 = [ 1 ]\n[ 5 X ]", 1),
                           (f"[ 5 [ 1 ] ] // {GUID}1", 0)):
            with self.subTest(text=text):
                content = self.stable("a.kel", text)
                self.assertEqual(self.identities(content)[2] == GIVEN, kept == 1)
                self.assertEqual(content, Expected(content, [GIVEN]).result)

    def test_values_of_managers_keep_their_identities(self):
        content = self.stable("a.kel", f"[ ( {GUID}1 = 7 ) 8 ]", "--force")
        self.assertEqual(content, Expected(content, [GIVEN]).result)
        self.assertEqual(self.identities(content)[2], GIVEN)

    def test_sharing_is_kept(self):
        content = self.stable("a.kel", f"[ {GUID}1 = [ 1 ] REF {GUID}1\n ] REF {GUID}1")
        self.assertEqual(content.count(b"KEL\0" + GIVEN + struct.pack("<i", REFERENCE)), 2)
        self.assertEqual(content, Expected(content, [GIVEN]).result)
        # Two places of one manager, which becomes one array of an identity of its own.
        content = self.stable("a.kel", f"[ {GUID}1 = ( ) REF {GUID}1\n ]", "--force")
        array = content[HEADER:2 * HEADER]
        self.assertEqual(content[2 * HEADER:], array[:20] + struct.pack("<i", REFERENCE))
        self.assertEqual(content, Expected(content, [GIVEN]).result)

    def test_identities_that_the_input_has_are_not_given_to_other_values(self):
        taken = self.identities(self.stable("a.json", '[1, 2]'))[1]
        guid = struct.unpack("<IHH", taken[:8])
        spelled = "%08X-%04X-%04X-" % guid + taken[8:10].hex() + "-" + taken[10:].hex()
        content = self.stable("a.kel", f"[ 1 {spelled} = 2 ]")
        found = self.identities(content)
        self.assertEqual(found[2], taken)
        self.assertNotEqual(found[1], taken)
        self.assertEqual(content, Expected(content, [taken]).result)

    def test_identities_look_like_drawn_ones(self):
        for one in self.identities(self.stable("a.json", "[1, [2], {}]")):
            self.assertEqual((one[7] >> 4, one[8] >> 6), (4, 2))

    def test_the_output_can_be_read_and_converted_again(self):
        text = Text(3).value(2000)
        content = self.stable("a.json", text)
        self.ok("check", "out1.kelb")
        self.ok("convert", "out1.kelb", "back.json")
        self.ok("convert", "a.json", "b.kelb")
        self.ok("convert", "b.kelb", "b.json")
        self.assertEqual(self.read("back.json"), self.read("b.json"))
        self.assertEqual(self.stable("b.kelb", content), content)

    def test_deep_values(self):
        depth = 200000
        content = self.stable("a.json", "[" * depth + "]" * depth)
        self.assertEqual(len(set(self.identities(content))), depth)
        self.stable("a.json", '{"a":' * depth + "1" + "}" * depth)

    def test_only_binary_has_identities_for_all_values(self):
        self.write("a.json", "[1]")
        for output, form in (("b.json", "json"), ("b.kel", "text")):
            self.fails(2, "kel: --identities stable is for binary only, and the output is "
                       f"{form}\n", "convert", "--identities", "stable", "a.json", output)
        result = self.kel("convert", "--identities", "fixed", "a.json", "b.kelb")
        self.assertEqual(result.status, 2)
        self.assertIn('"fixed" is not random or stable\n', result.err)
        self.assertEqual(self.files(), ["a.json"])
