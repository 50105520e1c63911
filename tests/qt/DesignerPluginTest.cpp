// SPDX-License-Identifier: MIT
// Qt Designer's view of the widgets: the plugin loads, names each widget
// and its header, and makes the widgets of those classes.
#include <gtest/gtest.h>

#include "tests/qt/QtPrinters.h"

#include <memory>

#include <QPluginLoader>
#include <QWidget>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

namespace {

TEST(DesignerPluginTest, ThePluginNamesAndMakesEachWidget) {
    QPluginLoader loader(QStringLiteral(KELVARIN_DESIGNER_PATH));
    QObject* instance = loader.instance();
    ASSERT_NE(instance, nullptr) << loader.errorString().toStdString();
    auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(instance);
    ASSERT_NE(collection, nullptr);
    const QList<QDesignerCustomWidgetInterface*> plugins = collection->customWidgets();
    ASSERT_EQ(plugins.size(), 3);

    QStringList shownNames;
    for (QDesignerCustomWidgetInterface* plugin : plugins) {
        EXPECT_TRUE(plugin->name().startsWith(QStringLiteral("kelvarin::qt::")));
        EXPECT_TRUE(plugin->includeFile().startsWith(QStringLiteral("kelvarin/")));
        EXPECT_TRUE(plugin->domXml().contains(QStringLiteral("class=\"%1\"").arg(plugin->name())));
        EXPECT_FALSE(plugin->icon().isNull());
        // The widget box names the control's class.
        const QString xml = plugin->domXml();
        const qsizetype at = xml.indexOf(QStringLiteral("displayname=\""));
        ASSERT_GE(at, 0);
        shownNames << xml.mid(at + 13, xml.indexOf(u'"', at + 13) - at - 13);
        std::unique_ptr<QWidget> widget(plugin->createWidget(nullptr));
        ASSERT_NE(widget, nullptr);
        // The widget's own class: its property sheet is the one
        // the widgets' own tests write by name.
        EXPECT_EQ(QString::fromLatin1(widget->metaObject()->className()), plugin->name());
    }
    EXPECT_EQ(shownNames, (QStringList{QStringLiteral("DateBox"), QStringLiteral("ProgressBox"),
                                       QStringLiteral("CommandBox")}));
}

}  // namespace
