tablet
