import math
import sys

import pytest

import kxtypes
from kxtypes import Matrix3d, Point3d, Vector3d


def test_point_and_vector_arithmetic_against_hand_computed_values():
    p = Point3d(1, 2, 3)
    v = Vector3d(0.5, -1, 2)
    assert (p + v).to_json() == '{"x":1.5,"y":1,"z":5}'
    assert (p - v).to_json() == '{"x":0.5,"y":3,"z":1}'
    assert isinstance(p - Point3d(0, 0, 1), Vector3d) and (p - Point3d(0, 0, 1)).to_json() == '{"x":1,"y":2,"z":2}'
    assert (v * 2).to_json() == (2 * v).to_json() == '{"x":1,"y":-2,"z":4}'
    assert (-v / 0.5).to_json() == '{"x":-1,"y":2,"z":-4}'
    assert Vector3d(1, 0, 0).dot(Vector3d(0.1, 0, 0)) == 0.1
    assert Vector3d(1, 2, 3).cross(Vector3d(4, 5, 6)) == Vector3d(-3, 6, -3)
    assert Vector3d(3, 4, 12).length() == 13
    assert p.distance_to(Point3d(1, 5, 7)) == 5
    assert list(p) == [1, 2, 3]


def test_equality_is_the_kernels_tolerance_and_values_are_not_hashable():
    assert Point3d(1, 2, 3) == Point3d(1, 2, 3 + 1e-12)
    assert Point3d(1, 2, 3) != Point3d(1, 2, 3.001)
    assert Vector3d(1, 0, 0).is_equal_to(Vector3d(1 + 1e-12, 0, 0))
    with pytest.raises(TypeError):
        hash(Point3d())


def test_matrices_rotate_translate_compose_and_invert():
    quarter = Matrix3d.rotation(math.pi / 2, Vector3d(0, 0, 1))
    assert quarter * Vector3d(1, 0, 0) == Vector3d(0, 1, 0)
    about = Matrix3d.rotation(math.pi, Vector3d(0, 0, 1), Point3d(1, 0, 0))
    assert about * Point3d(0, 0, 0) == Point3d(2, 0, 0)
    move = Matrix3d.translation(Vector3d(1, 2, 3))
    assert move * Point3d(0, 0, 0) == Point3d(1, 2, 3)
    assert move * Vector3d(1, 0, 0) == Vector3d(1, 0, 0), "a translation moves no vector"
    assert (move * quarter) * Point3d(1, 0, 0) == Point3d(1, 3, 3)
    assert (quarter * move) * Point3d(1, 0, 0) == Point3d(-2, 2, 3)
    assert move.inverse() * move == Matrix3d()
    assert move[0, 3] == 1 and move[2, 3] == 3 and move.rows[3] == [0, 0, 0, 1]
    with pytest.raises(ValueError, match="singular"):
        Matrix3d([[0] * 4] * 4).inverse()
    with pytest.raises(IndexError):
        move[4, 0]


def test_json_and_text_forms_round_trip_and_refuse_what_they_cannot_read():
    p = Point3d(0.1, -2, 1e300)
    assert p.to_text() == "(0.10000000000000001, -2, 1.0000000000000001e+300)"
    assert Point3d.from_text(p.to_text()) == p and Point3d.from_json(p.to_json()) == p
    m = Matrix3d.rotation(0.3, Vector3d(1, 1, 0), Point3d(1, 2, 3))
    assert Matrix3d.from_json(m.to_json()).rows == m.rows
    assert Matrix3d.from_text(m.to_text()).rows == m.rows
    assert Vector3d.from_json('{"x":1,"y":2,"z":3}') == Vector3d(1, 2, 3)
    for read, text in [(Point3d.from_json, '{"x":1}'), (Point3d.from_json, "{"), (Matrix3d.from_json, "[[1,0],[0,1]]"),
                       (Point3d.from_text, "(1, 2)"), (Vector3d.from_text, "(a, b, c)"), (Matrix3d.from_text, "(1, 2, 3)")]:
        with pytest.raises(ValueError):
            read(text)


def test_values_from_the_point3_objects_commands_answer():
    answered = kxtypes.trvGeometry.addVector3dToPoint3d(Point3d(1, 2, 3), Vector3d(1, 1, 1))
    assert isinstance(answered, kxtypes.Point3)
    assert Point3d(answered) == Point3d(2, 3, 4)
    assert Matrix3d(kxtypes.trvGeometry.getTranslationMatrix(Vector3d(1, 2, 3))) == Matrix3d.translation(Vector3d(1, 2, 3))
    with pytest.raises(AttributeError):
        Point3d(object())
