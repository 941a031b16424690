import math
import sys

import pytest

import kxtypes
from kxtypes import Matrix3d, Point3d, Vector3d

g = kxtypes.trvGeometry


def test_every_command_is_listed_and_every_geometry_command_is_a_function():
    names = [name for name, _ in kxtypes.commands()]
    assert len(names) >= 32 and "Geometry.DotProduct" in names and "Matrix.SetToRotation" in names
    functions = [name for name in dir(g) if not name.startswith("_")]
    assert len(functions) == 32
    assert g.getRotationMatrix.__doc__.startswith("Matrix.SetToRotation: <RotationAngle> <RotationAxis> [<RotationPoint>]")


def test_run_answers_text_and_raises_the_commands_message():
    assert kxtypes.run("Geometry.DotProduct", Vector3d(1, 0, 0), Vector3d(0.1, 0, 0)) == "0.10000000000000001"
    assert kxtypes.run("geometry.dotproduct", '{"x":1,"y":2,"z":3}', {"x": 1, "y": 1, "z": 1}) == "6"
    assert kxtypes.run("Geometry.Vector3dMultiply", Vector3d(1, 2, 3), 0.5) == '{"x":0.5,"y":1,"z":1.5}'
    with pytest.raises(kxtypes.TextCommandError, match="^Invalid json for vector$"):
        kxtypes.run("Geometry.CrossProduct", "{", Vector3d(1, 0, 0))
    with pytest.raises(kxtypes.TextCommandError, match="^No parameter for the vector$"):
        kxtypes.run("Geometry.CrossProduct", Vector3d(1, 0, 0))
    with pytest.raises(kxtypes.TextCommandError, match='^Unknown command "Geometry.NoSuchCommand"'):
        kxtypes.run("Geometry.NoSuchCommand")
    with pytest.raises(TypeError):
        kxtypes.run("Geometry.DotProduct", object(), object())


def test_script_functions_take_values_and_answer_points_lists_and_numbers():
    assert g.dotProduct(Vector3d(1, 0, 0), Vector3d(0.1, 0, 0)) == 0.1
    assert g.crossProduct(Vector3d(1, 0, 0), Vector3d(0, 1, 0)) == kxtypes.Point3(0, 0, 1)
    assert g.areVector3dsEqual(Vector3d(1, 0, 0), Vector3d(1, 1e-12, 0)) == 1
    assert g.arePlanesEqual({"pointOnPlane": {"x": 0, "y": 0, "z": 1}, "normal": {"x": 0, "y": 0, "z": 1}},
                            {"pointOnPlane": {"x": 5, "y": -3, "z": 1}, "normal": {"x": 0, "y": 0, "z": 2}}) == 1
    line = g.createLine3d({"x0": 0, "y0": 0, "z0": 0, "x1": 3, "y1": 4, "z1": 0})
    assert g.getLine3dProperties(line)["length"] == 5
    assert g.multiplyVector3d(Vector3d(1, 2, 3), 2) == kxtypes.Point3(2, 4, 6)
    assert Matrix3d(g.getIdentityMatrix()) == Matrix3d()


def test_rotation_takes_its_point_as_an_optional_third_argument():
    about_origin = Matrix3d(g.getRotationMatrix(math.pi, Vector3d(0, 0, 1)))
    about_point = Matrix3d(g.getRotationMatrix(math.pi, Vector3d(0, 0, 1), Point3d(1, 0, 0)))
    assert about_origin * Point3d(1, 0, 0) == Point3d(-1, 0, 0)
    assert about_point * Point3d(0, 0, 0) == Point3d(2, 0, 0)
    with pytest.raises(TypeError, match="at least 2 arguments"):
        g.getRotationMatrix(math.pi)
    with pytest.raises(TypeError, match="must be real number"):
        g.getRotationMatrix("pi", Vector3d(0, 0, 1))


def test_calls_leave_the_reference_counts_of_their_arguments_as_they_were():
    p, v, rows = Point3d(1, 2, 3), Vector3d(1, 0, 0), Matrix3d().rows
    point = kxtypes.Point3(1, 2, 3)
    before = [sys.getrefcount(o) for o in (p, v, rows, point)]
    for _ in range(100):
        g.addVector3dToPoint3d(p, v)
        g.addVector3dToPoint3d(point, point)
        g.localToWorldPoint3d(rows, point)
        kxtypes.run("Geometry.DotProduct", v, point)
        with pytest.raises(kxtypes.TextCommandError):
            g.crossProduct(point, "{")
    assert [sys.getrefcount(o) for o in (p, v, rows, point)] == before
    answer = g.crossProduct(v, point)
    assert sys.getrefcount(answer) == 2, "a new answer is held by its name alone"
