// Qt Designer's view of the progress bar: the plugin loads, names the
// widget and its header, and makes widgets whose property sheet works.
#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <QPluginLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace {

TEST(DesignerPluginTest, ThePluginMakesProgressBarsWithTheirProperties) {
    QPluginLoader loader(QStringLiteral(KELVARIN_DESIGNER_PATH));
    QObject* instance = loader.instance();
    ASSERT_NE(instance, nullptr) << loader.errorString().toStdString();
    auto* plugin = qobject_cast<QDesignerCustomWidgetInterface*>(instance);
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->name(), QStringLiteral("kelvarin::qt::ProgressBoxWidget"));
    EXPECT_EQ(plugin->includeFile(), QStringLiteral("qt/ProgressBoxWidget.h"));
    EXPECT_TRUE(plugin->domXml().contains(plugin->name()));
    EXPECT_FALSE(plugin->icon().isNull());
    plugin->initialize(nullptr);
    EXPECT_TRUE(plugin->isInitialized());

    std::unique_ptr<QWidget> widget(plugin->createWidget(nullptr));
    ASSERT_NE(widget, nullptr);
    EXPECT_STREQ(widget->metaObject()->className(), "kelvarin::qt::ProgressBoxWidget");
    // What the property sheet does: write and read by name.
    EXPECT_TRUE(widget->setProperty("MaxValue", 200.0));
    EXPECT_TRUE(widget->setProperty("Value", 50));
    EXPECT_EQ(widget->property("Percentual").toDouble(), 25.0);
    EXPECT_TRUE(widget->setProperty("GradientStyle", 2));
    EXPECT_EQ(widget->property("GradientStyle").toInt(), 2);
}

}  // namespace
