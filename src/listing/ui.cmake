# Windows: the Ad Studio theme editor.
add_library(tb_listing_ui STATIC
    AdStudioTexts.h
    frmAdStudio.cpp frmAdStudio.h frmAdStudio.ui)
target_link_libraries(tb_listing_ui PUBLIC tb_listing tb_platform_ui Qt6::Widgets)
