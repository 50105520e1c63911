// Qt Designer's view of the widgets: the plugin loads, names each widget
// and its header, and makes widgets whose property sheet works.
#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <map>
#include <memory>

#include <QPluginLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace {

TEST(DesignerPluginTest, ThePluginMakesEachWidgetWithItsProperties) {
    QPluginLoader loader(QStringLiteral(KELVARIN_DESIGNER_PATH));
    QObject* instance = loader.instance();
    ASSERT_NE(instance, nullptr) << loader.errorString().toStdString();
    auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(instance);
    ASSERT_NE(collection, nullptr);
    const QList<QDesignerCustomWidgetInterface*> plugins = collection->customWidgets();
    ASSERT_EQ(plugins.size(), 3);

    std::map<QString, std::unique_ptr<QWidget>> made;
    for (QDesignerCustomWidgetInterface* plugin : plugins) {
        EXPECT_TRUE(plugin->name().startsWith(QStringLiteral("kelvarin::qt::")));
        EXPECT_TRUE(plugin->includeFile().startsWith(QStringLiteral("qt/")));
        EXPECT_TRUE(plugin->domXml().contains(QStringLiteral("class=\"%1\"").arg(plugin->name())));
        EXPECT_FALSE(plugin->icon().isNull());
        std::unique_ptr<QWidget> widget(plugin->createWidget(nullptr));
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(QString::fromLatin1(widget->metaObject()->className()), plugin->name());
        made[plugin->name()] = std::move(widget);
    }

    // What the property sheet does: write and read by name, enumerations
    // as numbers. The widgets' other properties are written by name in
    // their own tests.
    for (const auto& [name, widget] : made) {
        EXPECT_TRUE(widget->setProperty("Alignment", 2)) << name.toStdString();
        EXPECT_EQ(widget->property("Alignment").toInt(), 2) << name.toStdString();
    }
}

}  // namespace
