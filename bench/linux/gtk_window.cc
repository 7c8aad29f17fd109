// A GTK window of some 1,400 accessible elements.
#include <gtk/gtk.h>

#include <string>

namespace {

constexpr int kRows = 200;  // of seven elements each, the row itself among them

GtkWidget* makeRow(int number) {
  const std::string text = std::to_string(number);
  GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 4);
  const auto add = [row](GtkWidget* widget) { gtk_container_add(GTK_CONTAINER(row), widget); };
  add(gtk_label_new(("Title " + text).c_str()));
  add(gtk_label_new(("What number " + text + " has to say").c_str()));
  add(gtk_button_new_with_label(("Open " + text).c_str()));
  add(gtk_check_button_new_with_label(("Read " + text).c_str()));
  add(gtk_entry_new());
  add(gtk_button_new_from_icon_name("window-close", GTK_ICON_SIZE_BUTTON));
  return row;
}

}  // namespace

int main(int argc, char** argv) {
  gtk_init(&argc, &argv);
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(window), "Many elements");
  gtk_window_set_default_size(GTK_WINDOW(window), 800, argc > 1 ? std::stoi(argv[1]) : 600);
  GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
  GtkWidget* rows = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  for (int i = 0; i < kRows; ++i) gtk_container_add(GTK_CONTAINER(rows), makeRow(i));
  gtk_container_add(GTK_CONTAINER(scroller), rows);
  gtk_container_add(GTK_CONTAINER(window), scroller);
  gtk_widget_show_all(window);
  gtk_main();
  return 0;
}
