#include "CatalogDocument.h"
#include "StoreTestSupport.h"
#include "TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

class CatalogDocumentFixture : public StoreFileTest {
protected:
    void SetUp() override { CreateWithModules({}); }
    QJsonObject exported() {
        QJsonObject document;
        EXPECT_TRUE(CatalogDocument::Export(m_db, document, nullptr));
        return document;
    }
    bool import(const char* json, QString* error = nullptr) {
        return CatalogDocument::Import(m_db, QJsonDocument::fromJson(json).object(), error);
    }
};

using CatalogDocumentTest = OnEachBackend<CatalogDocumentFixture>;
PLCDB_ON_EACH_BACKEND(CatalogDocumentTest);

TEST_P(CatalogDocumentTest, TextsPassUnchangedAndMissingKeysAreEmpty) {
    ASSERT_TRUE(import(R"({"format":"plcdb","version":1,
        "modules":[{"manufacturer":"M","series":"S","type":"T",
                    "spec":{"Code":"C1","BoxA1":" 12,5 mm ","DirFlags":"7"},
                    "terminals":[{"text":"HP?SPACE"},{"special":"A = 1;;"}]}],
        "styles":[{"number":3,"BoxB6":"abc"}]})"));
    const QJsonObject document = exported();
    const QJsonObject module = document.value("modules").toArray().at(0).toObject();
    EXPECT_EQ(module.value("spec").toObject(),
              QJsonObject({{"Code", "C1"}, {"BoxA1", " 12,5 mm "}, {"DirFlags", "7"}}));
    EXPECT_EQ(module.value("terminals").toArray(),
              QJsonArray({QJsonObject{{"text", "HP?SPACE"}, {"special", ""}},
                          QJsonObject{{"text", ""}, {"special", "A = 1;;"}}}));
    EXPECT_EQ(document.value("styles").toArray().at(2).toObject(),
              QJsonObject({{"number", 3}, {"BoxB6", "abc"}}));
    // The module's index rows are implied.
    EXPECT_EQ(document.value("index").toArray().size(), 3);
}

TEST_P(CatalogDocumentTest, AnyErrorIsNamedAndWritesNothing) {
    const QJsonObject empty = exported();
    QString error;
    // The reserved field is in the store but not in the document.
    EXPECT_FALSE(import(R"({"format":"plcdb","version":1,"modules":[{"manufacturer":"M",
        "series":"S","type":"T","spec":{"Code":"C1","Reserved":"x"}}]})",
                        &error));
    EXPECT_EQ(error, R"(modules[0].spec has an unknown field "Reserved")");
    const char* const bad[] = {
        R"({"format":"other","version":1})",
        R"({"format":"plcdb","version":2})",
        R"({"format":"plcdb","version":1,"index":{}})",
        R"({"format":"plcdb","version":1,"index":[{"manufacturer":"M","type":"T"}]})",
        R"({"format":"plcdb","version":1,"index":[{"manufacturer":"A"}],
            "modules":[{"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C","Nope":"x"}}]})",
        R"({"format":"plcdb","version":1,"index":[{"manufacturer":"A"}],
            "modules":[{"manufacturer":"M","series":"S","type":"T","spec":{"Code":5}}]})",
        R"({"format":"plcdb","version":1,"index":[{"manufacturer":"A"}],
            "modules":[{"manufacturer":"M","series":"S","spec":{"Code":"C"}}]})",
        R"({"format":"plcdb","version":1,"index":[{"manufacturer":"A"}],
            "modules":[{"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C"}},
                       {"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C"}}]})",
        R"({"format":"plcdb","version":1,"index":[{"manufacturer":"A"}],
            "styles":[{"number":12}]})",
        R"({"format":"plcdb","version":1,"index":[{"manufacturer":"A"}],
            "modules":[{"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C"},
                        "terminals":[{"text":1}]}]})",
    };
    for (const char* json : bad) {
        QString error;
        EXPECT_FALSE(import(json, &error)) << json;
        EXPECT_FALSE(error.isEmpty()) << json;
        EXPECT_EQ(exported(), empty) << json;
    }
}

// Regression: a document without a version was refused as "version  of the document".
TEST_P(CatalogDocumentTest, AWrongVersionSaysWhatIsWrong) {
    const std::pair<const char*, const char*> cases[] = {
        {R"({"format":"plcdb"})", "the document has no \"version\""},
        {R"({"format":"plcdb","version":null})", "the document has no \"version\""},
        {R"({"format":"plcdb","version":"1"})",
         "version \"1\" of the document is not known; this program reads version 1"},
        {R"({"format":"plcdb","version":[2]})",
         "version [2] of the document is not known; this program reads version 1"},
    };
    for (const auto& [json, message] : cases) {
        QString error;
        EXPECT_FALSE(import(json, &error)) << json;
        EXPECT_EQ(error, QString::fromUtf8(message));
    }
}
