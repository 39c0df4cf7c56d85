#include "base/qevsettings.h"
#include "render/light/lightdirection.h"
#include "render/light/materials.h"

#include <QFile>
#include <QTest>

using namespace marlowen;

class TestMaterials : public QObject
{
    Q_OBJECT

private slots:
    void init() { QevSettings().remove("materials"); }

    void userMaterialsComeFirst();
    void savedMaterialReturnsUnchanged();
    void refusedNames_data();
    void refusedNames();
    void clonesGetFreeNames();
    void invalidStoreEntriesAreIgnored();
    void unknownNameGivesTheDefault();
    void lightDirectionEqualsComputedValues();

private:
    static Material _green(const QString &name)
    {
        return {name, QColor(10, 200, 30, 40), QColor(1, 2, 3, 4), QColor(5, 6, 7, 8), 12.5, false};
    }
};

void TestMaterials::userMaterialsComeFirst()
{
    QVERIFY(saveMaterial(_green("zinc")));
    QVERIFY(saveMaterial(_green("moss & fern, 50 %")));
    const QList<Material> materials = loadMaterials();
    QCOMPARE(materials.size(), 26);
    QCOMPARE(materials.mid(2), presetMaterials());
    QCOMPARE(QSet<QString>({materials[0].name, materials[1].name}),
             QSet<QString>({"zinc", "moss & fern, 50 %"}));
}

void TestMaterials::savedMaterialReturnsUnchanged()
{
    Material material = _green("moss");
    material.readOnly = true;
    QVERIFY(saveMaterial(material));
    material.shinyness = 99.0;
    QVERIFY(saveMaterial(material));
    QCOMPARE(QevSettings().value("materials/moss/readOnly"), QVariant(false));
    material.readOnly = false;
    QCOMPARE(loadMaterials().front(), material);
    QVERIFY(deleteMaterial("moss"));
    QVERIFY(deleteMaterial("moss"));
    QCOMPARE(loadMaterials(), presetMaterials());
    QVERIFY(!QevSettings().contains("materials/moss/name"));
}

void TestMaterials::refusedNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << QString("  ");
    QTest::newRow("slash") << QString("a/b");
    QTest::newRow("backslash") << QString("a\\b");
    QTest::newRow("preset") << QString("gold");
}

void TestMaterials::refusedNames()
{
    QFETCH(QString, name);
    const Outcome done = saveMaterial(_green(name));
    QVERIFY(!done);
    QVERIFY(!deleteMaterial("gold"));
    QVERIFY(done.failure().sentence.endsWith('.'));
    QCOMPARE(loadMaterials(), presetMaterials());
}

void TestMaterials::clonesGetFreeNames()
{
    const Material gold = materialNamed(presetMaterials(), "gold");
    QList<Material> materials = presetMaterials();
    for (const char *name : {"gold copy", "gold copy 2", "gold copy 3"}) {
        const Material clone = clonedMaterial(gold, materials);
        QCOMPARE(clone.name, QString(name));
        QVERIFY(!clone.readOnly);
        QCOMPARE(clone.diffuse, gold.diffuse);
        materials.prepend(clone);
    }
}

void TestMaterials::invalidStoreEntriesAreIgnored()
{
    const QString file = QevSettings().fileName();
    {
        QevSettings settings;
        settings.setValue("materials", 7);
        settings.setValue("materials/odd/ambient", "no colour");
        settings.setValue("materials/odd/shinyness", "shiny");
        settings.setValue("materials/huge/name", "huge");
        settings.setValue("materials/huge/shinyness", 1e300);
        settings.setValue("materials/negative/shinyness", -5);
        settings.setValue("materials/void/shinyness", "nan");
        settings.setValue("materials/deep/er/name", "lost");
    }
    QFile store(file);
    QVERIFY(store.open(QIODevice::Append));
    store.write("\n[materials]\ntorn\\ambient=@Variant(\\0\\0\\0\\x43\\x7)\n");
    store.close();

    const QList<Material> materials = loadMaterials();
    QCOMPARE(materials.size(), 24 + 6);
    QVERIFY(!materialNamed(materials, "odd").ambient.isValid());
    QCOMPARE(rgbaOf(materialNamed(materials, "odd").ambient),
             (std::array<float, 4>{0.0F, 0.0F, 0.0F, 1.0F}));
    QCOMPARE(materialNamed(materials, "odd").shinyness, 0.0);
    QCOMPARE(materialNamed(materials, "huge").shinyness, 1000.0);
    QCOMPARE(materialNamed(materials, "negative").shinyness, 0.0);
    QCOMPARE(materialNamed(materials, "void").shinyness, 0.0);
    QVERIFY(deleteMaterial("odd"));
    QCOMPARE(loadMaterials().size(), 24 + 5);
}

void TestMaterials::unknownNameGivesTheDefault()
{
    QCOMPARE(materialNamed(presetMaterials(), "no such").name, QString("obsidian"));
    QCOMPARE(materialNamed({}, "no such").name, presetMaterials().front().name);
}

void TestMaterials::lightDirectionEqualsComputedValues()
{
    // q = (0.85, 0.3, -0.3, 0): m[8] = 2 * 0.85 * -0.3 = -0.51, m[9] = -2 * 0.85 * 0.3 = -0.51,
    // m[1] = 2 * 0.3 * -0.3 = -0.18; y = -(-0.51 * -0.18 - 0.51) = 0.4182.
    const auto [x, y, z] = lightDirection(0);
    QVERIFY(qAbs(x + 0.51F) < 1e-6F);
    QVERIFY(qAbs(y - 0.4182F) < 1e-6F);
    QCOMPARE(z, 1.0F);
    QCOMPARE(lightDirection(8), lightDirection(0));
    QCOMPARE(lightDirection(-1), lightDirection(0));
}

QTEST_GUILESS_MAIN(TestMaterials)
#include "tst_materials.moc"
