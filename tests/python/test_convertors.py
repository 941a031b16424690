import sys

import pytest

import kxtypes  # registers the geometry convertors
import TarvelBasicPythonTypes as T


def test_convertors_carry_values_between_objects_and_text():
    p = T.Point3(1, 0.1, -2)
    refs = sys.getrefcount(p)
    assert T.toValueText("p3", p) == "(1, 0.10000000000000001, -2)"
    assert T.toValueText("V3", p) == "(1, 0.10000000000000001, -2)"
    assert sys.getrefcount(p) == refs
    assert T.fromValueText("p3", "(1, 2, 3)") == T.Point3(1, 2, 3)
    assert T.fromValueText("V3", "(1, 2, 3)", plainString=True) == '{"x":1,"y":2,"z":3}'
    assert T.toDisplayText("p3", "(1, 2, 3)") == "TarvelBasicPythonTypes.Point3(1, 2, 3)"
    text = kxtypes.Matrix3d.translation(kxtypes.Vector3d(1, 2, 3)).to_text()
    rows = T.fromValueText("m", text)
    assert rows == [[1, 0, 0, 1], [0, 1, 0, 2], [0, 0, 1, 3], [0, 0, 0, 1]]
    assert T.toValueText("m", rows) == text and sys.getrefcount(rows) == 2
    assert T.toDisplayText("m", text) == "[[1,0,0,1],[0,1,0,2],[0,0,1,3],[0,0,0,1]]"


def test_unreadable_objects_give_empty_text_and_malformed_text_raises():
    for code, unreadable in [("p3", "(1, 2, 3)"), ("V3", {"x": 1}), ("p3", (1, 2)), ("m", [[1, 0], [0, 1]]),
                             ("m", [[1, 0, 0, 0]] * 3), ("m", "[[1,0,0,0]"), ("m", object())]:
        assert T.toValueText(code, unreadable) == ""
    for code, malformed in [("p3", "(1, 2)"), ("V3", "(a, b, c)"), ("m", "(1, 2, 3)"), ("m", "")]:
        with pytest.raises(ValueError, match="malformed value text"):
            T.fromValueText(code, malformed)
        if code == "m":
            with pytest.raises(ValueError):
                T.toDisplayText(code, malformed)
    with pytest.raises(KeyError):
        T.toValueText("q", T.Point3())
