import pytest

import kxtypes


def test_libraries_list_find_and_read_properties():
    libraries = kxtypes.libraries()
    assert len(libraries) >= 6 and all(library["count"] > 0 for library in libraries)
    steel = kxtypes.find_material("CorvexMaterial-018")
    assert steel.id == "CorvexMaterial-018" and steel.name == "Steel (generic)" and steel.schema == "physicalmaterial"
    assert kxtypes.find_material("Steel (generic)").id == "CorvexMaterial-018"
    structural = steel.connected("Structural")
    assert structural.property("structural_Density") == 7900.0
    assert structural.properties()["structural_Young_modulus"] == 2e11
    assert steel.property("no such property") is None and steel.connected("no such property") is None
    assert kxtypes.find_material("no such material") is None
    library = next(l for l in libraries if any(m[0] == "CorvexMaterial-018" for m in kxtypes.materials(l["id"])))
    assert kxtypes.find_material("CorvexMaterial-018", library["name"]).library_id == library["id"]
    with pytest.raises(KeyError):
        kxtypes.materials("no such library")


def test_a_saved_document_opens_lists_its_bodies_materials_and_saves_again(kx, tmp_path):
    path = tmp_path / "bodies.kxd"
    kx("doc", "create", path, "--count", 1, "--bodies", 2)
    kx("doc", "material", "assign", path, 2, "CorvexMaterial-018")
    kx("doc", "material", "assign", path, 3, "CorvexMaterial-018")
    document = kxtypes.Document.open(path)
    bodies = [e for e in document.entities() if e["type"] == "AppearanceTestor"]
    assert [(b["name"], b["physical"]) for b in bodies] == [("body-0", "CorvexMaterial-018"), ("body-1", "CorvexMaterial-018")]
    assert document.materials() == [
        {"reference": "0", "kind": "physical", "material_id": "CorvexMaterial-018", "name": "Steel (generic)", "uses": 2}]
    assert '"name":"body-0"' in document.entity_json(2).replace(" ", "")
    copy = tmp_path / "copy.kxd"
    document.save(copy, xml=True)
    assert kxtypes.Document.open(copy).materials() == document.materials()
    with pytest.raises(KeyError):
        document.entity_json(999)


def test_a_damaged_document_raises_the_librarys_message_and_stays_as_it_was(kx, tmp_path):
    path = tmp_path / "whole.kxd"
    kx("doc", "create", path, "--count", 3)
    damaged = tmp_path / "damaged.kxd"
    damaged.write_bytes(path.read_bytes()[:200])
    with pytest.raises(kxtypes.Error, match="corrupt"):
        kxtypes.Document.open(damaged)
    assert damaged.stat().st_size == 200
    with pytest.raises(kxtypes.Error):
        kxtypes.Document.open(tmp_path / "missing.kxd")
    document = kxtypes.Document.open(path)
    with pytest.raises(kxtypes.Error):
        document.save(tmp_path / "no such folder" / "a.kxd")
    assert not (tmp_path / "no such folder").exists()
